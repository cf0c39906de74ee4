# Warning set shared by every target of the project.
add_library(vantrel_warnings INTERFACE)
target_compile_options(vantrel_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
  -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual
  $<$<BOOL:${VANTREL_WERROR}>:-Werror>)
