#include "xml/report_assets.h"

#include "platform/file.h"
#include "util/folders.h"
#include "xml/picture_folder.h"

namespace orvo {
namespace {

constexpr std::u16string_view kTemplates = u"\\Reports\\";
constexpr std::u16string_view kImages = u"\\Images\\";

constexpr AssetFile kFullFiles[] = {{u"ConversationStats.xsl"},
                                    {u"ConversationStats2.xsl"},
                                    {u"Expert.htm"},
                                    {u"ExpertApplicationStats.xsl"},
                                    {u"ExpertCounts.xsl"},
                                    {u"ExpertEventLog.xsl"},
                                    {u"ExpertFlowStats.xsl"},
                                    {u"Graphs.xsl"},
                                    {u"HierarchicalNodeStats.xsl"},
                                    {u"Main.xsl"},
                                    {u"MainHistory.xsl"},
                                    {u"MainSnapshots.xsl"},
                                    {u"Nodes.htm"},
                                    {u"NodeStats.xsl"},
                                    {u"NodeStatsHistory.xsl"},
                                    {u"Protocols.htm"},
                                    {u"ProtocolStats.xsl"},
                                    {u"ProtocolStatsHistory.xsl"},
                                    {u"Report.htm"},
                                    {u"VoIP.htm"},
                                    {u"VoIPMedia.xsl"},
                                    {u"WChannelStats.xsl"},
                                    {u"Wireless.htm"},
                                    {u"WLANStats.xsl"},
                                    {u"WLANStatsHistory.xsl"},
                                    {u"StatsReport.css"}};

constexpr AssetFile kAdditionalNodeFiles[] = {{u"AdditionalNode_Conversation.xsl", u"ConversationStats.xsl"},
                                              {u"AdditionalNode_Conversation2.xsl", u"ConversationStats2.xsl"},
                                              {u"Conversations.htm"},
                                              {u"Expert.htm"},
                                              {u"AdditionalNode_Expert.xsl", u"ExpertCounts.xsl"},
                                              {u"Main.xsl"},
                                              {u"MainHistory.xsl"},
                                              {u"MainSnapshots.xsl"},
                                              {u"Nodes.htm"},
                                              {u"AdditionalNode_Node.xsl", u"NodeStats.xsl"},
                                              {u"NodeStatsHistory.xsl"},
                                              {u"Report.htm"},
                                              {u"StatsReport.css"}};

constexpr AssetFile kExpertSummaryFiles[] = {{u"AdditionalNode_Conversation.xsl", u"ConversationStats.xsl"},
                                             {u"Expert.htm"},
                                             {u"AdditionalNode_Expert.xsl", u"ExpertFlowStats.xsl"},
                                             {u"Main.xsl"},
                                             {u"MainHistory.xsl"},
                                             {u"MainSnapshots.xsl"},
                                             {u"AdditionalExpert_ApplicationStats.xsl", u"ExpertApplicationStats.xsl"},
                                             {u"AdditionalExpert_Counts.xsl", u"ExpertCounts.xsl"},
                                             {u"Report.htm"},
                                             {u"StatsReport.css"}};

constexpr AssetFile kExecutiveSummaryFiles[] = {{u"AdditionalNode_Conversation.xsl", u"ConversationStats.xsl"},
                                                {u"AdditionalNode_Conversation2.xsl", u"ConversationStats2.xsl"},
                                                {u"Conversations.htm"},
                                                {u"Expert.htm"},
                                                {u"AdditionalExpert_Counts.xsl", u"ExpertCounts.xsl"},
                                                {u"AdditionalNode_Expert.xsl", u"ExpertFlowStats.xsl"},
                                                {u"Main.xsl"},
                                                {u"MainHistory.xsl"},
                                                {u"MainSnapshots.xsl"},
                                                {u"Protocols.htm"},
                                                {u"ProtocolStats.xsl"},
                                                {u"Nodes.htm"},
                                                {u"AdditionalNode_Node.xsl", u"NodeStats.xsl"},
                                                {u"NodeStatsHistory.xsl"},
                                                {u"Report.htm"},
                                                {u"AdditionalExec_WLANStats.xsl", u"WLANStats.xsl"},
                                                {u"AdditionalExec_WChannelStats.xsl", u"WChannelStats.xsl"},
                                                {u"Wireless.htm"},
                                                {u"StatsReport.css"}};

constexpr AssetFile kConversationsOnlyFiles[] = {
    {u"ConversationStats.xsl"}, {u"ConversationStats2.xsl"}, {u"Conversations.htm"}, {u"Main.xsl"},
    {u"MainHistory.xsl"},       {u"MainSnapshots.xsl"},      {u"Report.htm"},        {u"StatsReport.css"}};

/// Images of every kind of report.
constexpr std::u16string_view kCommon[] = {u"blue_spacer.gif", u"BlueBar.gif",    u"GreenBar.gif",    u"history.gif",
                                           u"Info.gif",        u"LeftArrow.gif",  u"logo.gif",        u"main_off.gif",
                                           u"main_on.gif",     u"minor.gif",      u"overview.gif",    u"PurpleBar.gif",
                                           u"RedBar.gif",      u"RightArrow.gif", u"snapshots.gif",   u"Stop.gif",
                                           u"summary.gif",     u"Warning.gif",    u"white_spacer.gif"};

constexpr std::u16string_view kFullImages[] = {
    u"application_stats.gif", u"channels.gif",     u"details.gif",       u"event_log.gif",    u"expert_off.gif",
    u"expert_on.gif",         u"flow_stats.gif",   u"graphs.gif",        u"hierarchy.gif",    u"media.gif",
    u"nodes_off.gif",         u"nodes_on.gif",     u"protocols_off.gif", u"protocols_on.gif", u"VoIP_on.gif",
    u"VoIP_off.gif",          u"wireless_off.gif", u"wireless_on.gif"};

constexpr std::u16string_view kAdditionalNodeImages[] = {u"conversations_off.gif", u"conversations_on.gif",
                                                         u"expert_off.gif",        u"expert_on.gif",
                                                         u"nodes_off.gif",         u"nodes_on.gif"};

constexpr std::u16string_view kExpertSummaryImages[] = {u"application_stats.gif", u"expert_off.gif", u"expert_on.gif",
                                                        u"flow_stats.gif", u"graphs.gif"};

constexpr std::u16string_view kExecutiveSummaryImages[] = {
    u"conversations_off.gif", u"conversations_on.gif", u"application_stats.gif", u"channels.gif",
    u"details.gif",           u"event_log.gif",        u"expert_off.gif",        u"expert_on.gif",
    u"flow_stats.gif",        u"graphs.gif",           u"hierarchy.gif",         u"nodes_off.gif",
    u"nodes_on.gif",          u"protocols_off.gif",    u"protocols_on.gif",      u"wireless_off.gif",
    u"wireless_on.gif"};

constexpr std::u16string_view kConversationsOnlyImages[] = {u"conversations_off.gif", u"conversations_on.gif",
                                                            u"wireless_off.gif", u"wireless_on.gif"};

/// Copies one file over what has its name. A template that is missing is left out.
void Copy(const std::u16string& source, const std::u16string& target) {
  (void)CopyFile(source, target);
}

}  // namespace

constexpr std::span<const std::u16string_view> kCommonImages{kCommon};
constexpr ReportAssets kFullAssets{kFullFiles, kFullImages};
constexpr ReportAssets kAdditionalNodeAssets{kAdditionalNodeFiles, kAdditionalNodeImages};
constexpr ReportAssets kExpertSummaryAssets{kExpertSummaryFiles, kExpertSummaryImages};
constexpr ReportAssets kExecutiveSummaryAssets{kExecutiveSummaryFiles, kExecutiveSummaryImages};
constexpr ReportAssets kConversationsOnlyAssets{kConversationsOnlyFiles, kConversationsOnlyImages};

void CopyAssets(const XmlReport& report, const ReportAssets& assets) {
  const std::u16string source = std::u16string(report.template_root) + std::u16string(kTemplates);
  const std::u16string& folder = report.job.folder;
  for (const AssetFile& file : assets.files) {
    Copy(source + std::u16string(file.name), folder + std::u16string(file.target.empty() ? file.name : file.target));
  }
  const std::u16string images = PathBelow(report, u"Images\\");
  MakeFolders(images);  // one that is not there fails the copies
  for (const std::span<const std::u16string_view>& list : {kCommonImages, assets.images}) {
    for (std::u16string_view image : list) {
      Copy(source + std::u16string(kImages) + std::u16string(image), images + std::u16string(image));
    }
  }
}

}  // namespace orvo
