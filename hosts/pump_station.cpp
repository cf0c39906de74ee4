#include "vantrel/hosts/pump_station.h"

namespace vantrel::hosts {
namespace {

GeneratedField Field(int shift, int width, RegisterGenerator generator) {
  return {shift, width, {std::move(generator)}};
}

}  // namespace

TraceProgramConfig PumpStationProgram() {
  using G = RegisterGenerator;
  TraceProgramConfig c;
  c.key = "PMP1";
  c.version = 3;
  c.ringRecords = 50;
  c.registers = {
      // run and alarm bits, mode nibble, state byte, level in hundredths of a centimetre
      G::Fields({Field(0, 1, G::Sawtooth(2)), Field(1, 1, G::RandomBits(1)),
                 Field(4, 4, G::Sawtooth(4)), Field(8, 8, G::Sawtooth(7)),
                 Field(16, 16, G::Sine(500, 1500, 40))}),
      // signed pressure and the flow word
      G::Fields({Field(0, 16, G::Sine(300, 0, 25)), Field(16, 16, G::Sawtooth(4096, 256))}),
      G::TimeStamp(),
      // application and step number
      G::Fields({Field(0, 8, G::Sawtooth(2, 1)), Field(8, 8, G::Sawtooth(5))}),
      // a register address: media code 5 ("R") and register 1200 or 1201
      G::Fields({Field(16, 8, G::Constant(5)), Field(0, 16, G::Sawtooth(2, 1200))}),
      G::Text("LOT7"),
  };
  return c;
}

}  // namespace vantrel::hosts
