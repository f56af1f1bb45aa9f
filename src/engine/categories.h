#pragma once

#include "engine/context.h"
#include "engine/nodes.h"
#include "engine/protocols.h"
#include "engine/summary.h"
#include "engine/tables.h"
#include "engine/traffic.h"
#include "engine/wireless.h"

namespace orvo {

/// A category of statistics: its identifier, and the interface that its object answers.
template <class T>
struct Category {
  using Interface = T;
  Guid identifier;
};

inline constexpr Category<ISummaryStats> kSummaryCategory{"A96CBBAB-8DEE-4190-989D-6A9FE43CFB9A"_guid};
inline constexpr Category<INodeStats> kNodeCategory{"734DC573-BFF5-48BB-89B5-2946AA324F62"_guid};
inline constexpr Category<INodeStats> kTopTalkerCategory{"3A754590-DFBB-47E7-BA0D-36ABCA7DCCD1"_guid};
inline constexpr Category<IHierarchyStats> kHierarchyCategory{"6549B06E-5867-402A-8BAE-5C7B19569FB8"_guid};
inline constexpr Category<IProtocolStats> kProtocolCategory{"9A91E0AF-1341-46FD-B0F3-07EE3D100FD7"_guid};
inline constexpr Category<IConversationStats> kConversationCategory{"C90634C4-FF9B-478D-9177-FDA2F5231499"_guid};
inline constexpr Category<IWirelessNodeStats> kWirelessNodeCategory{"51C336B2-0B7F-49E7-9C19-097A1D578ACB"_guid};
inline constexpr Category<IWirelessChannelStats> kWirelessChannelCategory{"6CB820C3-2AB9-4D83-9B26-02FB5CF35E0C"_guid};
inline constexpr Category<IExpertStats> kExpertCategory{"5244008D-7C43-400C-8116-398C73C7BE05"_guid};
inline constexpr Category<ITrafficHistory> kTrafficHistoryCategory{"642C5379-6FE0-40C4-B31F-F86A4E2ED46D"_guid};
inline constexpr Category<ISizeStats> kSizeCategory{"AC7586F3-C565-44E6-9E9B-EFFE581BA674"_guid};

/// The object of a category. A failure status, or S_FALSE with a null object, when the capture has nothing of the kind.
template <class T>
Status GetCategory(IStatsContext* context, const Category<T>& category, ComPtr<T>* out) {
  Status status = context->GetCategory(category.identifier, T::kIid, out->OutVoid());
  if (Succeeded(status) && !*out) return S_FALSE;
  return status;
}

}  // namespace orvo
