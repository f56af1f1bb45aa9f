// What shows the report in a browser: copied files and menu pages.

#include "xml/menu_pages.h"

#include <gmock/gmock.h>

#include "tests/xml/xml_report_fixture.h"

namespace orvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

class MenuPagesTest : public XmlReportTest {
 protected:
  MenuPagesTest() {
    Switch(kSwitchOutputGraphs, 0);
    engine.live.missing = {kSummaryCategory.identifier};
    std::filesystem::create_directories(templates.Path("Reports/Images"));
    for (const char* name : {"Report.htm", "Nodes.htm", "AdditionalNode_Node.xsl", "Images/logo.gif"}) {
      templates.Write(std::string("Reports/") + name, name);
    }
    SetTemplates(PathFromSystem(templates.Path()));
  }
  /// The images of a page, each with its distance from the left: "40:main_on".
  std::vector<std::string> Buttons(const std::string& page) const {
    std::vector<std::string> buttons;
    for (const std::string& line : Lines(folder.Read(page))) {
      const std::size_t left = line.find("left:");
      const std::size_t image = line.find("Images/");
      if (left == line.npos || image == line.npos) continue;
      const std::size_t begin = line.find_first_not_of(' ', left + 5);
      buttons.push_back(line.substr(begin, line.find("px", begin) - begin) + ":" +
                        line.substr(image + 7, line.find('.', image) - image - 7));
    }
    return buttons;
  }
  bool IsOnPage(const std::string& page, const std::string& text) const {
    return folder.Read(page).find(text) != std::string::npos;
  }

  TemporaryFolder templates;
};

TEST_F(MenuPagesTest, AFullReport) {
  folder.Write("MainMenu.htm", "<html><old/></html>");
  folder.Write("NodesMenu.htm", "<!DOCTYPE html [<!ENTITY x SYSTEM 'file:///etc/passwd'>]><html>&x;");
  ASSERT_EQ(Output(), S_OK);
  // The pages themselves stand among the reviewed reports. These have no tabs of what was not analysed.
  EXPECT_THAT(Buttons("MainMenu.htm"),
              ElementsAre("0:white_spacer", "40:main_on", "175:nodes_off", "310:protocols_off", "595:logo",
                          "0:blue_spacer", "70:overview", "160:snapshots", "250:history"));
  EXPECT_THAT(Buttons("NodesMenu.htm"),
              ElementsAre("0:white_spacer", "40:main_off", "175:nodes_on", "310:protocols_off", "595:logo",
                          "0:blue_spacer", "70:overview", "160:details", "240:hierarchy"));
  EXPECT_THAT(folder.Names(), IsSupersetOf({"MainMenu.htm", "NodesMenu.htm", "ProtocolsMenu.htm", "Report.htm"}));
  for (const char* page : {"ExpertMenu.htm", "VoIPMenu.htm", "WirelessMenu.htm", "ConversationsMenu.htm"}) {
    EXPECT_FALSE(folder.Has(page));
  }
  EXPECT_EQ(folder.Read("Images/logo.gif"), "Images/logo.gif");
  EXPECT_FALSE(folder.Has("NodeStats.xsl")) << "its template is missing";

  folder.Write("Report.htm", "changed");
  EXPECT_EQ(Reported().folder.Read("Report.htm"), "changed") << "a kept index means kept files";
  EXPECT_TRUE(IsOnPage("NodesMenu.htm", "loadNodeHistory()"));
  ASSERT_EQ(OutputLive(), S_OK);
  EXPECT_EQ(folder.Read("Report.htm"), "Report.htm");
  EXPECT_FALSE(IsOnPage("MainMenu.htm", "loadSummaryHistory()"));
}

TEST_F(MenuPagesTest, ButtonsMoveToTheLeftOverThoseThatAreMissing) {
  const std::tuple<std::int32_t, std::int32_t, const char*> cases[] = {
      {0, 1, "160:details"}, {1, 0, "250:hierarchy"}, {1, 1, "330:hierarchy"}};
  for (const auto& [hierarchy, details, last] : cases) {
    Switch(kSwitchOutputNodeHierarchy, hierarchy);
    Switch(kSwitchOutputNodeDetails, details);
    ASSERT_EQ(Output(), S_OK);
    EXPECT_EQ(Buttons("NodesMenu.htm").back(), last);
  }
}

TEST_F(MenuPagesTest, TheReportOfConversationsHasTwoPages) {
  Switch(kSwitchOutputConversationsOnly, 1);
  EXPECT_THAT(Reported().folder.Names(), ElementsAre("ConversationStatistics.xml", "ConversationsMenu.htm", "Images",
                                                     "MainMenu.htm", "Report.htm", "StatsReport.xml"));
  EXPECT_TRUE(IsOnPage("MainMenu.htm",
                       "<a href=\"Conversations.htm\" target=\"_top\">\n    <img style=\""
                       "position:absolute; top: 20px; left:175px; width:131px; height:34px\""));
}

TEST_F(MenuPagesTest, TheReportOfOneMoreNodeSaysWhatItIsAbout) {
  Switch(kSwitchOutputAdditionalNode, 1);
  EXPECT_THAT(Reported().folder.Names(), IsSupersetOf({"MainMenu.htm", "NodesMenu.htm", "ExpertMenu.htm",
                                                       "ConversationsMenu.htm", "NodeStats.xsl"}));
  EXPECT_EQ(folder.Read("NodeStats.xsl"), "AdditionalNode_Node.xsl");
  EXPECT_FALSE(IsOnPage("NodesMenu.htm", "loadNodes()")) << "no overview beside conversations";
}

TEST_F(MenuPagesTest, WithoutTemplatesTheReportIsWrittenAllTheSame) {
  SetTemplates(u"\\no\\such\\folder");
  EXPECT_FALSE(Reported().folder.Has("Report.htm"));
  EXPECT_TRUE(folder.Has("StatsReport.xml"));
}

TEST_F(MenuPagesTest, APageThatCannotBeSavedEndsTheReportBeforeTheIndex) {
  std::filesystem::create_directory(folder.Path("ProtocolsMenu.htm"));
  EXPECT_TRUE(Failed(Output()));
  EXPECT_TRUE(folder.Has("NodesMenu.htm"));
  EXPECT_FALSE(folder.Has("StatsReport.xml"));
}

}  // namespace
}  // namespace orvo::test
