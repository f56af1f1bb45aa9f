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
  bool IsOnPage(const std::string& page, const std::string& text) const {
    return folder.Read(page).find(text) != std::string::npos;
  }

  TemporaryFolder templates;
};

TEST_F(MenuPagesTest, AFullReport) {
  folder.Write("MainMenu.htm", "<html><old/></html>");
  folder.Write("NodesMenu.htm", "<!DOCTYPE html [<!ENTITY x SYSTEM 'file:///etc/passwd'>]><html>&x;");
  ASSERT_EQ(Output(), S_OK);
  EXPECT_EQ(folder.Read("MainMenu.htm"), R"page(<?xml version="1.0" encoding="utf-8"?>
<html>
  <img style="position:absolute; top: 20px; left: 0px; width: 100%; height:34px" src="Images/white_spacer.gif" />
  <img style="position:absolute; top: 20px; left: 40px; width:131px; height:34px" src="Images/main_on.gif" />
  <a href="Nodes.htm" target="_top">
    <img style="position:absolute; top: 20px; left:175px; width:131px; height:34px" src="Images/nodes_off.gif" border="0" />
  </a>
  <a href="Protocols.htm" target="_top">
    <img style="position:absolute; top: 20px; left:310px; width:131px; height:34px" src="Images/protocols_off.gif" border="0" />
  </a>
  <img style="position:absolute; top: 20px; left:595px; width:79px; height:30px" src="Images/logo.gif" />
  <img style="position:absolute; top: 54px; left:0px; width: 100%; height:18px" src="Images/blue_spacer.gif" />
  <a href="#">
    <img style="position:absolute; top: 54px; left: 70px; width: 80px; height: 17px" src="Images/overview.gif" onclick="parent.loadMain()" border="0" />
  </a>
  <a href="#">
    <img style="position:absolute; top: 54px; left: 160px; width: 80px; height: 18px" src="Images/snapshots.gif" onclick="parent.loadSnapshots()" border="0" />
  </a>
  <a href="#">
    <img style="position:absolute; top: 54px; left:250px; width: 73px; height: 18px" src="Images/history.gif" onclick="parent.loadSummaryHistory()" border="0" />
  </a>
</html>
)page");
  EXPECT_EQ(folder.Read("NodesMenu.htm"), R"page(<?xml version="1.0" encoding="utf-8"?>
<html>
  <img style="position:absolute; top: 20px; left: 0px; width: 100%; height:34px" src="Images/white_spacer.gif" />
  <a href="Report.htm" target="_top">
    <img style="position:absolute; top: 20px; left: 40px; width:131px; height:34px" src="Images/main_off.gif" border="0" />
  </a>
  <img style="position:absolute; top: 20px; left:175px; width:131px; height:34px" src="Images/nodes_on.gif" />
  <a href="Protocols.htm" target="_top">
    <img style="position:absolute; top: 20px; left:310px; width:131px; height:34px" src="Images/protocols_off.gif" border="0" />
  </a>
  <img style="position:absolute; top: 20px; left:595px; width:79px; height:30px" src="Images/logo.gif" />
  <img style="position:absolute; top: 54px; left:0px; width: 100%; height:18px" src="Images/blue_spacer.gif" />
  <a href="#">
    <img style="position:absolute; top: 54px; left: 70px; width: 80px; height: 17px" src="Images/overview.gif" onclick="parent.loadNodes()" border="0" />
  </a>
  <a href="#">
    <img style="position:absolute; top: 54px; left:160px; width: 70px; height: 18px" src="Images/details.gif" onclick="parent.loadNodeDetails()" border="0" />
  </a>
  <a href="#">
    <img style="position:absolute; top: 54px; left:240px; width: 71px; height: 18px" src="Images/hierarchy.gif" onclick="parent.loadNodeHierarchy()" border="0" />
  </a>
</html>
)page");
  EXPECT_THAT(folder.Names(), IsSupersetOf({"MainMenu.htm", "NodesMenu.htm", "ProtocolsMenu.htm", "Report.htm"}));
  for (const char* page : {"ExpertMenu.htm", "VoIPMenu.htm", "WirelessMenu.htm", "ConversationsMenu.htm"}) {
    EXPECT_FALSE(folder.Has(page));
  }
  EXPECT_EQ(folder.Read("Images/logo.gif"), "Images/logo.gif");
  EXPECT_FALSE(folder.Has("NodeStats.xsl")) << "its template is missing";

  folder.Write("Report.htm", "changed");
  ASSERT_EQ(Output(), S_OK);
  EXPECT_EQ(folder.Read("Report.htm"), "changed") << "a kept index means kept files";
  EXPECT_TRUE(IsOnPage("NodesMenu.htm", "loadNodeHistory()"));
  ASSERT_EQ(OutputLive(), S_OK);
  EXPECT_EQ(folder.Read("Report.htm"), "Report.htm");
  EXPECT_FALSE(IsOnPage("MainMenu.htm", "loadSummaryHistory()"));
}

TEST_F(MenuPagesTest, ButtonsMoveToTheLeftOverThoseThatAreMissing) {
  Switch(kSwitchOutputNodeHierarchy, 0);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_TRUE(IsOnPage("NodesMenu.htm", "left:160px; width: 70px; height: 18px\" src=\"Images/details.gif\""));
  Switch(kSwitchOutputNodeHierarchy, 1);
  Switch(kSwitchOutputNodeDetails, 0);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_TRUE(IsOnPage("NodesMenu.htm", "left:250px; width: 71px; height: 18px\" src=\"Images/hierarchy.gif\""));
  Switch(kSwitchOutputNodeDetails, 1);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_TRUE(IsOnPage("NodesMenu.htm", "left:330px; width: 71px; height: 18px\" src=\"Images/hierarchy.gif\""));
}

TEST_F(MenuPagesTest, TheReportOfConversationsHasTwoPages) {
  Switch(kSwitchOutputConversationsOnly, 1);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(folder.Names(), ElementsAre("ConversationStatistics.xml", "ConversationsMenu.htm", "Images",
                                          "MainMenu.htm", "Report.htm", "StatsReport.xml"));
  EXPECT_TRUE(IsOnPage("MainMenu.htm",
                       "<a href=\"Conversations.htm\" target=\"_top\">\n    <img style=\""
                       "position:absolute; top: 20px; left:175px; width:131px; height:34px\""));
}

TEST_F(MenuPagesTest, TheReportOfOneMoreNodeSaysWhatItIsAbout) {
  Switch(kSwitchOutputAdditionalNode, 1);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(folder.Names(), IsSupersetOf({"MainMenu.htm", "NodesMenu.htm", "ExpertMenu.htm", "ConversationsMenu.htm",
                                            "NodeStats.xsl"}));
  EXPECT_EQ(folder.Read("NodeStats.xsl"), "AdditionalNode_Node.xsl");
  EXPECT_FALSE(IsOnPage("NodesMenu.htm", "loadNodes()")) << "no overview beside conversations";
}

TEST_F(MenuPagesTest, WithoutTemplatesTheReportIsWrittenAllTheSame) {
  SetTemplates(u"\\no\\such\\folder");
  ASSERT_EQ(Output(), S_OK);
  EXPECT_FALSE(folder.Has("Report.htm"));
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
