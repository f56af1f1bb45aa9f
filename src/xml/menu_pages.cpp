#include "xml/menu_pages.h"

#include <span>

#include "platform/error.h"
#include "platform/xml_tree.h"
#include "util/ascii.h"

namespace orvo {
namespace {

// Positions are pixels from the left.
constexpr unsigned kFirstTab = 175;
constexpr unsigned kTabWidth = 135;
constexpr unsigned kLogoGap = 150;

constexpr std::string_view kTabRow = "position:absolute; top: 20px; left:";
constexpr std::string_view kButtonRow = "position:absolute; top: 54px; left:";
constexpr std::string_view kTabTail = "px; width:131px; height:34px";
constexpr std::string_view kLogoTail = "px; width:79px; height:30px";
constexpr std::string_view kTopStyle = "position:absolute; top: 20px; left: 0px; width: 100%; height:34px";
constexpr std::string_view kMainTabStyle = "position:absolute; top: 20px; left: 40px; width:131px; height:34px";
constexpr std::string_view kBarStyle = "position:absolute; top: 54px; left:0px; width: 100%; height:18px";

/// A button of the second row. `style` is its whole style, or ends one whose position follows from the buttons before.
struct Button {
  std::string_view image;
  std::string_view call;
  std::string_view style;
  bool is_fixed;
  bool (*is_present)(const XmlMemory& memory);
  /// How far the next one stands to the right of this one, when it is there.
  unsigned width = 0;
};

bool Always(const XmlMemory& /*memory*/) {
  return true;
}

bool HasHistory(const XmlMemory& memory) {
  return memory.extends_history();
}

template <bool WrittenSections::*section>
bool Has(const XmlMemory& memory) {
  return memory.written.*section;
}

constexpr std::string_view kOverviewStyle = "position:absolute; top: 54px; left: 70px; width: 80px; height: 17px";
constexpr std::string_view kOverviewImage = "Images/overview.gif";
constexpr std::string_view kHistoryImage = "Images/history.gif";
constexpr std::string_view kHistoryTail = "px; width: 73px; height: 18px";

// The position of the first button that has none of its own is that of its page.
constexpr Button kMainButtons[] = {
    {kOverviewImage, "parent.loadMain()", kOverviewStyle, true, Always},
    {"Images/snapshots.gif", "parent.loadSnapshots()",
     "position:absolute; top: 54px; left: 160px; width: 80px; height: 18px", true, Always},
    {kHistoryImage, "parent.loadSummaryHistory()", kHistoryTail, false, HasHistory, 70},
    {"Images/graphs.gif", "parent.loadGraphs()", "px; width: 70px; height: 18px", false, Has<&WrittenSections::graphs>},
};

constexpr Button kNodesButtons[] = {
    {kOverviewImage, "parent.loadNodes()", kOverviewStyle, true,
     [](const XmlMemory& memory) { return !memory.written.conversations; }},
    {kHistoryImage, "parent.loadNodeHistory()", kHistoryTail, false, Has<&WrittenSections::node_history>, 90},
    {"Images/details.gif", "parent.loadNodeDetails()", "px; width: 70px; height: 18px", false,
     Has<&WrittenSections::node_conversations>, 80},
    {"Images/hierarchy.gif", "parent.loadNodeHierarchy()", "px; width: 71px; height: 18px", false,
     Has<&WrittenSections::hierarchy>},
};

constexpr Button kProtocolsButtons[] = {
    {kOverviewImage, "parent.loadProtocols()", kOverviewStyle, true, Always},
    {kHistoryImage, "parent.loadProtocolsHistory()",
     "position:absolute; top: 54px; left: 160px; width: 73px; height: 18px", true, HasHistory},
};

constexpr Button kExpertButtons[] = {
    {"Images/summary.gif", "parent.loadExpertCounts()",
     "position:absolute; top: 54px; left: 70px; width: 80px; height: 18px", true, Always},
    {"Images/flow_stats.gif", "parent.loadExpertFlowStats()", "px; width: 78px; height: 18px", false,
     Has<&WrittenSections::flows>, 80},
    {"Images/application_stats.gif", "parent.loadExpertApplication()", "px; width: 110px; height: 18px", false,
     Has<&WrittenSections::applications>, 120},
    {"Images/event_log.gif", "parent.loadExpertEventLog()", "px; width: 85px; height: 18px", false,
     Has<&WrittenSections::event_log>},
};

constexpr Button kWirelessButtons[] = {
    {kOverviewImage, "parent.loadWLAN()", kOverviewStyle, true, Always},
    {kHistoryImage, "parent.loadWLANHistory()", kHistoryTail, false, HasHistory, 80},
    {"Images/channels.gif", "parent.loadWChannels()", "px; width: 77px; height: 18px", false,
     Has<&WrittenSections::channels>},
};

constexpr Button kMediaButtons[] = {
    {"Images/media.gif", "parent.loadVoIPMedia()",
     "position:absolute; top: 54px; left: 70px; width: 50px; height: 18px", true, Always},
};

/// A menu page and the tab that leads to it. The main page has a tab of its own kind.
struct Page {
  std::u16string_view file;
  bool WrittenSections::*section;
  std::string_view link;
  std::string_view off_image;
  std::string_view on_image;
  std::span<const Button> buttons;
  unsigned first_button;
};

constexpr Page kMain{u"MainMenu.htm",      nullptr,      "Report.htm", "Images/main_off.gif",
                     "Images/main_on.gif", kMainButtons, 250};
constexpr Page kNodes{u"NodesMenu.htm",      &WrittenSections::nodes, "Nodes.htm", "Images/nodes_off.gif",
                      "Images/nodes_on.gif", kNodesButtons,           160};
constexpr Page kProtocols{u"ProtocolsMenu.htm",
                          &WrittenSections::protocols,
                          "Protocols.htm",
                          "Images/protocols_off.gif",
                          "Images/protocols_on.gif",
                          kProtocolsButtons,
                          0};
constexpr Page kExpert{u"ExpertMenu.htm",      &WrittenSections::expert, "Expert.htm", "Images/expert_off.gif",
                       "Images/expert_on.gif", kExpertButtons,           160};
constexpr Page kMedia{u"VoIPMenu.htm",      &WrittenSections::media, "VoIP.htm", "Images/VoIP_off.gif",
                      "Images/VoIP_on.gif", kMediaButtons,           0};
constexpr Page kWireless{u"WirelessMenu.htm",
                         &WrittenSections::wireless,
                         "Wireless.htm",
                         "Images/wireless_off.gif",
                         "Images/wireless_on.gif",
                         kWirelessButtons,
                         160};
constexpr Page kConversations{u"ConversationsMenu.htm",
                              &WrittenSections::conversations,
                              "Conversations.htm",
                              "Images/conversations_off.gif",
                              "Images/conversations_on.gif",
                              {},
                              0};

/// In the order of their tabs, and of their making.
constexpr const Page* kTabs[] = {&kNodes, &kProtocols, &kExpert, &kMedia, &kWireless, &kConversations};
constexpr const Page* kAdditionalNodePages[] = {&kMain, &kNodes, &kExpert, &kConversations};
constexpr const Page* kConversationsPages[] = {&kMain, &kConversations};

void SetAscii(XmlElement element, std::string_view name, std::string_view value) {
  element.SetAttribute(name, WidenAscii(value));
}

XmlElement AddPicture(XmlElement parent, std::string_view style, std::string_view source) {
  XmlElement picture = parent.AddElement("img");
  SetAscii(picture, "style", style);
  SetAscii(picture, "src", source);
  return picture;
}

void AddTabLink(XmlElement html, const Page& page, std::string_view style) {
  XmlElement link = html.AddElement("a");
  SetAscii(link, "href", page.link);
  SetAscii(link, "target", "_top");
  SetAscii(AddPicture(link, style, page.off_image), "border", "0");
}

void AddButton(XmlElement html, const Button& button, std::string_view style) {
  XmlElement link = html.AddElement("a");
  SetAscii(link, "href", "#");
  XmlElement picture = AddPicture(link, style, button.image);
  SetAscii(picture, "onclick", button.call);
  SetAscii(picture, "border", "0");
}

std::string StyleAt(std::string_view row, unsigned left, std::string_view tail) {
  return std::string(row) + std::to_string(left) + std::string(tail);
}

void AddTab(XmlElement html, const Page& tab, bool is_own, std::string_view style) {
  if (is_own) {
    AddPicture(html, style, tab.on_image);
  } else {
    AddTabLink(html, tab, style);
  }
}

/// The tabs of what was written, the page's own among them, and the logo behind them.
void AddTabs(const XmlMemory& memory, const Page& page, XmlElement html) {
  AddTab(html, kMain, &page == &kMain, kMainTabStyle);
  unsigned left = kFirstTab;
  for (const Page* tab : kTabs) {
    const bool is_own = tab == &page;
    if (!is_own && !(memory.written.*tab->section)) continue;
    AddTab(html, *tab, is_own, StyleAt(kTabRow, left, kTabTail));
    left += kTabWidth;
  }
  AddPicture(html, StyleAt(kTabRow, left + kLogoGap, kLogoTail), "Images/logo.gif");
}

void AddButtons(const XmlMemory& memory, const Page& page, XmlElement html) {
  unsigned left = page.first_button;
  for (const Button& button : page.buttons) {
    if (!button.is_present(memory)) continue;
    if (button.is_fixed) {
      AddButton(html, button, button.style);
      continue;
    }
    AddButton(html, button, StyleAt(kButtonRow, left, button.style));
    left += button.width;
  }
}

void WritePage(XmlReport& report, const Page& page) {
  if (report.job.folder.empty()) Raise(E_FAIL);
  // Nothing of an earlier page is shown again.
  XmlTree document;
  XmlElement html = document.AddRoot("html");
  AddPicture(html, kTopStyle, "Images/white_spacer.gif");
  AddTabs(report.memory, page, html);
  AddPicture(html, kBarStyle, "Images/blue_spacer.gif");
  AddButtons(report.memory, page, html);
  Insist(report, page.file, [&] { Check(document.Save(report.job.folder + std::u16string(page.file))); });
}

void MarkAdditionalNode(WrittenSections* written) {
  written->nodes = written->expert = written->conversations = true;
  written->graphs = written->hierarchy = written->node_conversations = false;
  written->flows = written->applications = written->event_log = false;
  written->protocols = written->wireless = false;
}

void MarkConversations(WrittenSections* written) {
  written->graphs = written->nodes = written->expert = written->protocols = written->wireless = false;
}

}  // namespace

void WriteMenuPages(XmlReport& report, MenuSet set) {
  WrittenSections& written = report.memory.written;
  switch (set) {
    case MenuSet::kGeneral:
      WritePage(report, kMain);
      for (const Page* page : kTabs) {
        if (written.*page->section) WritePage(report, *page);
      }
      break;
    case MenuSet::kAdditionalNode:
      MarkAdditionalNode(&written);
      for (const Page* page : kAdditionalNodePages) WritePage(report, *page);
      break;
    case MenuSet::kConversations:
      MarkConversations(&written);
      for (const Page* page : kConversationsPages) WritePage(report, *page);
      break;
  }
}

}  // namespace orvo
