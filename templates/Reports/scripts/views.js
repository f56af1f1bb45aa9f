// What the pages show, by the calls that the menus make: a document and the style sheet that lays it out. Of a document
// that may be large `wanted` tells what the style sheet looks at; the rest is not read.

const VIEWS = {
  loadMain: {
    title: "Overview",
    document: "StatsReport.xml",
    wanted: { counted: ["FlowStatistics"] },
    sheet: "Main.xsl",
  },
  loadSnapshots: { title: "Snapshots", ...partOf("SummaryStatistics"), sheet: "MainSnapshots.xsl" },
  loadSummaryHistory: { title: "History", document: "SummaryStatistics.xml", sheet: "MainHistory.xsl" },
  loadGraphs: { title: "Graphs", document: "Graphs.xml", sheet: "Graphs.xsl" },
  loadNodes: { title: "Nodes", ...partOf("NodeStatistics"), sheet: "NodeStats.xsl" },
  loadNodeHistory: { title: "History of nodes", document: "NodeStatistics.xml", sheet: "NodeStatsHistory.xsl" },
  loadNodeDetails: { title: "Conversations of nodes", document: "ConversationStatistics.xml", ...byVersion() },
  loadNodeHierarchy: {
    title: "Hierarchy of nodes",
    document: "HierarchicalNodeStatistics.xml",
    sheet: "HierarchicalNodeStats.xsl",
  },
  loadProtocols: { title: "Protocols", ...partOf("ProtocolStatistics"), sheet: "ProtocolStats.xsl" },
  loadProtocolsHistory: {
    title: "History of protocols",
    document: "ProtocolStatistics.xml",
    sheet: "ProtocolStatsHistory.xsl",
  },
  loadExpertCounts: { title: "Expert summary", ...partOf("ExpertStatistics"), sheet: "ExpertCounts.xsl" },
  loadExpertFlowStats: { title: "Flows", ...partOf("ExpertStatistics"), sheet: "ExpertFlowStats.xsl" },
  loadExpertApplication: { title: "Applications", ...partOf("ExpertStatistics"), sheet: "ExpertApplicationStats.xsl" },
  loadExpertEventLog: { title: "Event log", document: "ExpertLog.xml", sheet: "ExpertEventLog.xsl" },
  loadVoIPMedia: { title: "Voice and video", ...partOf("VoIPStatistics"), sheet: "VoIPMedia.xsl" },
  loadWLAN: { title: "Wireless nodes", ...partOf("WirelessNodeStatistics"), sheet: "WLANStats.xsl" },
  loadWLANHistory: {
    title: "History of wireless nodes",
    document: "WirelessNodeStatistics.xml",
    sheet: "WLANStatsHistory.xsl",
  },
  loadWChannels: { title: "Wireless channels", ...partOf("WirelessChannelStatistics"), sheet: "WChannelStats.xsl" },
  loadConversations: { title: "Conversations", document: "ConversationStatistics.xml", ...byVersion() },
};

function partOf(name) {
  return { document: "StatsReport.xml", wanted: { parts: [name] } };
}

// Long lists of conversations come without groups, and have a style sheet of their own.
function byVersion() {
  const sheetFor = (version) => (version === "1.0" ? "ConversationStats.xsl" : "ConversationStats2.xsl");
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
