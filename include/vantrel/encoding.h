#pragma once
// Texts inside Vantrel are bytes in Windows-1252, as the files they come from. Views convert
// them to UTF-8 only for display, and convert what a user types back before handing it over.

#include <string>
#include <string_view>

namespace vantrel {

std::string Cp1252ToUtf8(std::string_view cp1252);
void AppendCp1252AsUtf8(std::string& out, std::string_view cp1252);
// Characters without a Windows-1252 byte become '?'.
std::string Utf8ToCp1252(std::string_view utf8);
// A text of the control (Windows-1252, CR and LF line breaks) as one line of UTF-8, the
// breaks written as \r and \n: for a console or log line.
std::string Cp1252ToUtf8Line(std::string_view cp1252);

}  // namespace vantrel
