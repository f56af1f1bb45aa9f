#include "capture/context/name_services.h"

#include <utility>

#include "capture/classify/protocol_tree.h"
#include "capture/context/address_text.h"
#include "engine/protocols.h"
#include "platform/error.h"
#include "platform/object.h"

namespace orvo {
namespace {

class AddressNameService final : public Object<IAddressNameService> {
 public:
  explicit AddressNameService(AddressNames names) : names_(std::move(names)) {}

  Status AppendTypeLabel(std::uint8_t type, std::u16string* text) override {
    if (!text) return E_POINTER;
    return Guard([&] { text->append(AddressLabel(type)); });
  }
  Status AppendAddressText(const AddressRecord& record, std::u16string* text) override {
    if (!text) return E_POINTER;
    return Guard([&] {
      if (names_.directory && names_.directory->Append(record, text)) return;
      if (names_.vendors && names_.vendors->Append(record, text)) return;
      AppendAddress(record, text);
    });
  }

 private:
  AddressNames names_;
};

class ProtocolNameService final : public Object<IProtocolNameService> {
 public:
  Status IsTopLevel(std::uint16_t number) override {
    return tree_.Contains(number) && tree_.parent(number) == 0 ? S_OK : S_FALSE;
  }
  Status GetChain(std::uint16_t number, std::uint16_t* chain, std::uint32_t capacity, std::uint32_t* count) override {
    if (!count || (!chain && capacity != 0)) return E_POINTER;
    *count = 0;
    for (; tree_.Contains(number) && *count < capacity; number = tree_.parent(number)) chain[(*count)++] = number;
    return S_OK;
  }
  Status AppendName(std::uint16_t number, std::u16string* name) override {
    if (!name) return E_POINTER;
    if (!tree_.Contains(number)) return S_FALSE;
    return Guard([&] {
      std::string_view text = tree_.name(number);
      name->append(text.begin(), text.end());
    });
  }

 private:
  const ProtocolTree& tree_ = ProtocolTree::Get();
};

}  // namespace

ComPtr<IUnknown> MakeAddressNameService(AddressNames names) {
  return ComPtr<IUnknown>(MakeObject<AddressNameService>(std::move(names)).get());
}

ComPtr<IUnknown> MakeProtocolNameService() {
  return ComPtr<IUnknown>(MakeObject<ProtocolNameService>().get());
}

}  // namespace orvo
