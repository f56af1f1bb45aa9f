#pragma once

#include "platform/unknown.h"
#include "platform/xml_interfaces.h"

namespace orvo {

/// What the operations of IPersistXml work with.
struct PersistXmlArguments {
  ComPtr<IXmlDocument> document;
  ComPtr<IXmlNode> node;
};

/// Asks the arguments of Load or Save for their interfaces: E_POINTER when one is null, else the status of the query
/// that failed.
inline Status GetPersistXmlArguments(IUnknown* document, IUnknown* node, PersistXmlArguments* arguments) {
  if (!document || !node) return E_POINTER;
  Status status = Query(document, &arguments->document);
  return Failed(status) ? status : Query(node, &arguments->node);
}

}  // namespace orvo
