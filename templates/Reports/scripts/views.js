// What the pages show, by the calls that the menus make.

const VIEWS = {
  loadMain: { title: "Overview", document: "StatsReport.xml", sheet: "Main.xsl" },
  loadSnapshots: { title: "Snapshots", document: "StatsReport.xml", sheet: "MainSnapshots.xsl" },
  loadSummaryHistory: { title: "History", document: "SummaryStatistics.xml", sheet: "MainHistory.xsl" },
  loadGraphs: { title: "Graphs", document: "Graphs.xml", sheet: "Graphs.xsl" },
  loadNodes: { title: "Nodes", document: "StatsReport.xml", sheet: "NodeStats.xsl" },
  loadNodeHistory: { title: "History of nodes", document: "NodeStatistics.xml", sheet: "NodeStatsHistory.xsl" },
  loadNodeDetails: { title: "Conversations of nodes", document: "ConversationStatistics.xml", ...byVersion() },
  loadNodeHierarchy: {
    title: "Hierarchy of nodes",
    document: "HierarchicalNodeStatistics.xml",
    sheet: "HierarchicalNodeStats.xsl",
  },
  loadProtocols: { title: "Protocols", document: "StatsReport.xml", sheet: "ProtocolStats.xsl" },
  loadProtocolsHistory: {
    title: "History of protocols",
    document: "ProtocolStatistics.xml",
    sheet: "ProtocolStatsHistory.xsl",
  },
  loadExpertCounts: { title: "Expert summary", document: "StatsReport.xml", sheet: "ExpertCounts.xsl" },
  loadExpertFlowStats: { title: "Flows", document: "StatsReport.xml", sheet: "ExpertFlowStats.xsl" },
  loadExpertApplication: { title: "Applications", document: "StatsReport.xml", sheet: "ExpertApplicationStats.xsl" },
  loadExpertEventLog: { title: "Event log", document: "ExpertLog.xml", sheet: "ExpertEventLog.xsl" },
  loadVoIPMedia: { title: "Voice and video", document: "StatsReport.xml", sheet: "VoIPMedia.xsl" },
  loadWLAN: { title: "Wireless nodes", document: "StatsReport.xml", sheet: "WLANStats.xsl" },
  loadWLANHistory: {
    title: "History of wireless nodes",
    document: "WirelessNodeStatistics.xml",
    sheet: "WLANStatsHistory.xsl",
  },
  loadWChannels: { title: "Wireless channels", document: "StatsReport.xml", sheet: "WChannelStats.xsl" },
  loadConversations: { title: "Conversations", document: "ConversationStatistics.xml", ...byVersion() },
};

// Long lists of conversations come without groups, and have a style sheet of their own.
function byVersion() {
  const sheetFor = (root) =>
    root.getAttribute("Version") === "1.0" ? "ConversationStats.xsl" : "ConversationStats2.xsl";
  return { sheet: "ConversationStats.xsl", sheetFor };
}

const PAGES = {
  report: { menu: "MainMenu.htm", first: "loadMain" },
  nodes: { menu: "NodesMenu.htm", first: "loadNodes" },
  protocols: { menu: "ProtocolsMenu.htm", first: "loadProtocols" },
  expert: { menu: "ExpertMenu.htm", first: "loadExpertCounts" },
  voip: { menu: "VoIPMenu.htm", first: "loadVoIPMedia" },
  wireless: { menu: "WirelessMenu.htm", first: "loadWLAN" },
  conversations: { menu: "ConversationsMenu.htm", first: "loadConversations" },
};
