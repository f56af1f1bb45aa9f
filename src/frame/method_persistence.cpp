#include "frame/method_persistence.h"

#include "platform/error.h"
#include "util/persist_xml_arguments.h"

namespace orvo {
namespace {

template <class Operation>
Status WithDocument(IUnknown* document, IUnknown* node, std::u16string_view element, bool text_method,
                    Operation&& operation) {
  PersistXmlArguments arguments;
  Status status = GetPersistXmlArguments(document, node, &arguments);
  if (Failed(status)) return text_method ? E_FAIL : status;
  return Guard([&] { return operation(arguments.document.get(), Bstr(element)); });
}

}  // namespace

Status LoadMethodElement(IUnknown* document, IUnknown* node, std::u16string_view element, bool text_method) {
  return WithDocument(document, node, element, text_method, [](IXmlDocument* settings, const Bstr& name) {
    ComPtr<IXmlNode> found;
    return settings->SelectSingleNode(name.get(), found.Out());
  });
}

Status SaveMethodElement(IUnknown* document, IUnknown* node, std::u16string_view element, bool text_method) {
  return WithDocument(document, node, element, text_method, [](IXmlDocument* settings, const Bstr& name) {
    ComPtr<IXmlElement> made;
    return settings->CreateElement(name.get(), made.Out());
  });
}

}  // namespace orvo
