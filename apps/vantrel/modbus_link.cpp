#include "controller_links.h"
#include "vantrel/hosts/modbus/modbus_client.h"
#include "vantrel/hosts/modbus/modbus_mapping.h"

namespace vantrel::cli {
namespace {

using hosts::modbus::ModbusClient;

class ModbusLink final : public hosts::ControllerLink {
 public:
  template <typename... Args>
  explicit ModbusLink(Args&&... args) : client_(std::forward<Args>(args)...) {}
  void ReadRegisters(int32_t first, int32_t count) override { client_.ReadRegisters(first, count); }
  void ReadDataBlock(int32_t block, int32_t offset, int32_t count) override {
    client_.ReadDataBlock(block, offset, count);
  }

 private:
  ModbusClient client_;
};

}  // namespace

std::unique_ptr<hosts::ControllerLink> OpenModbusLink(const std::string& address,
                                                      const ModbusOptions& options,
                                                      PollEventLoop& loop,
                                                      hosts::LinkHandlers handlers,
                                                      std::string& error) {
  const auto endpoint = hosts::modbus::ParseEndpoint(address, error);
  if (!endpoint) return nullptr;
  hosts::modbus::ModbusMapping mapping;
  mapping.registerOffset = options.registerOffset;
  if (!mapping.SetWordOrder(options.wordOrder, error)) return nullptr;
  for (const std::string& block : options.dataBlocks) {
    if (!mapping.AddDataBlock(block, error)) return nullptr;
  }
  ModbusClient::Callbacks callbacks;
  callbacks.answer = std::move(handlers.answer);
  callbacks.connection = std::move(handlers.connection);
  callbacks.error = std::move(handlers.error);
  return std::make_unique<ModbusLink>(
      *endpoint, options.unit, std::move(mapping),
      [&loop](std::function<void()> task) { loop.Post(std::move(task)); }, std::move(callbacks));
}

}  // namespace vantrel::cli
