import { makeReport, sample, withReport, picture } from "./harness.mjs";
import { shown } from "./walk.mjs";
import { test } from "node:test";
const out = (p, n) => picture(p, "zz-" + n);
test("probe", async () => {
  const f = makeReport("t", sample("office.pcapng"), "--no-names");
  makeReport("t", sample("office.pcapng"), "--no-names");
  const w = makeReport("w", sample("voice-lossy.pcap"), "--set", "OutputVoIPOnly=1");
  const go = async (folder, opts, list) => withReport(folder, async (page, address) => {
    for (const [n, path] of list) { await page.goto(address + path); await shown(page); await page.waitForTimeout(150);
      const over = await page.evaluate(() => document.documentElement.scrollWidth - innerWidth);
      if (over > 0) console.log(n, "page is wider by", over);
      await out(page, n); }
  }, opts);
  await go(f, {colorScheme: "dark"}, [["dark-main","Report.htm"],["dark-flows","Expert.htm#ExpertFlowStats"],["dark-hist","Report.htm#SummaryHistory"]]);
  await go(f, {viewport:{width:360,height:760}}, ["Report.htm","Report.htm#SummaryHistory","Nodes.htm","Nodes.htm#NodeDetails","Nodes.htm#NodeHierarchy","Protocols.htm#ProtocolsHistory","Expert.htm","Expert.htm#ExpertEventLog"].map((p,i)=>["m"+i,p]));
  await go(f, {viewport:{width:2560,height:1440}}, [["wide","Report.htm"],["widenodes","Nodes.htm"]]);
  await go(w, {viewport:{width:360,height:760}}, [["mvoice","VoIP.htm"]]);
});
