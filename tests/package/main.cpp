// Creates a control from the installed headers and library and checks it starts disabled.
#include <vantrel/control.h>
#include <vantrel/manual_event_loop.h>
#include <vantrel/scripted_prompts.h>

#include <cstdio>

namespace {

struct Host : vantrel::ControlEvents {
  int statuses = 0;
  void Status(int16_t) override { ++statuses; }
};

}  // namespace

int main() {
  vantrel::ManualEventLoop loop;
  vantrel::ScriptedPrompts prompts;
  Host host;
  vantrel::Control control(host, {loop, loop.Clock(), prompts});
  const bool ok = host.statuses == 1 && control.GetSurface().status.caption == "Disabled";
  std::puts(ok ? "installed package works" : "installed package is broken");
  return ok ? 0 : 1;
}
