#include "vantrel/hosts/modbus/modbus_link.h"

#include "vantrel/hosts/modbus/modbus_client.h"
#include "vantrel/hosts/modbus/modbus_mapping.h"

namespace vantrel::hosts::modbus {
namespace {

class ModbusLink final : public ControllerLink {
 public:
  ModbusLink(Endpoint endpoint, int unit, ModbusMapping mapping, PostToHost post,
             ModbusClient::Callbacks callbacks)
      : client_(std::move(endpoint), unit, std::move(mapping), std::move(post),
                std::move(callbacks)) {}
  void ReadRegisters(int32_t first, int32_t count) override { client_.ReadRegisters(first, count); }
  void ReadDataBlock(int32_t block, int32_t offset, int32_t count) override {
    client_.ReadDataBlock(block, offset, count);
  }

 private:
  ModbusClient client_;
};

}  // namespace

std::unique_ptr<ControllerLink> OpenModbusLink(std::string_view address,
                                               const ModbusLinkOptions& options, PostToHost post,
                                               LinkHandlers handlers, std::string& error) {
  const auto endpoint = ParseEndpoint(address, error);
  if (!endpoint) return nullptr;
  if (!IsUnitId(options.unit)) {
    error = "unit " + std::to_string(options.unit) + " cannot be addressed over Modbus TCP";
    return nullptr;
  }
  ModbusMapping mapping;
  mapping.registerOffset = options.registerOffset;
  if (!mapping.SetWordOrder(options.wordOrder, error)) return nullptr;
  for (const std::string& block : options.dataBlocks) {
    if (!mapping.AddDataBlock(block, error)) return nullptr;
  }
  ModbusClient::Callbacks callbacks;
  callbacks.answer = std::move(handlers.answer);
  callbacks.connection = std::move(handlers.connection);
  callbacks.error = std::move(handlers.error);
  return std::make_unique<ModbusLink>(*endpoint, options.unit, std::move(mapping), std::move(post),
                                      std::move(callbacks));
}

}  // namespace vantrel::hosts::modbus
