#include "browser/browser_test.h"

#include <filesystem>

namespace oam::test {

void BrowserTest::SetUp() {
    if (!IsBrowserThere())
        GTEST_SKIP() << "there is no browser: scripts/setup installs chromium and chromium-driver";
    browser = std::make_unique<Browser>(home.Root());
}

void BrowserTest::TearDown() {
    browser.reset();
    ConsoleTest::TearDown();
}

void BrowserTest::StartBare(const std::string& chassis) {
    if (!chassis.empty()) home.Write("oam/cfg/sim.chassis", chassis);
    std::filesystem::copy_file(OAM_SIM_PLUGIN, home.Path("lib/sim.bpi"));
    StartAgain();
}

void BrowserTest::Enter() {
    browser->Open(address + "/#token=" + token);
    browser->Await("return document.documentElement.dataset.ready === 'yes'");
}

void BrowserTest::Go(const std::string& hash) {
    browser->Run("window.location.hash = arguments[0]", {hash});
    browser->Await(
        "return window.location.hash === arguments[0] && document.querySelector('h1') "
        "!== null",
        {hash});
}

void BrowserTest::Raise(const std::string& text, unsigned severity) {
    const auto client = Script();
    const auto answer =
        Send(*client, "POST", "/alerts",
             {{"code", 0x40002001}, {"source", "test"}, {"text", text}, {"severity", severity}});
    ASSERT_TRUE(answer) << httplib::to_string(answer.error());
    ASSERT_EQ(answer->status, 200) << answer->body;
}

// Names for whatever can be used, labels that are there, one main heading, no identity twice, and
// texts that can be told from what is behind them.
const char* const kAccessibilityCheck = R"js(
const wrong = [];
const visible = (e) => e.checkVisibility({ visibilityProperty: true });
const nameOf = (e) => {
  const by = (e.getAttribute('aria-labelledby') || '').split(' ').filter(Boolean)
    .map((id) => document.getElementById(id)?.textContent ?? '').join(' ');
  const labels = [...(e.labels ?? [])].map((l) => l.textContent).join(' ');
  return (by || e.getAttribute('aria-label') || labels || e.textContent || e.title || '').trim();
};
for (const e of document.querySelectorAll('a, button, input, select, textarea, summary, progress, [role=img]'))
  if (visible(e) && !nameOf(e)) wrong.push('no name: ' + e.outerHTML.slice(0, 120));
for (const e of document.querySelectorAll('label[for]'))
  if (!document.getElementById(e.htmlFor)) wrong.push('a label for nothing: ' + e.htmlFor);
for (const e of document.querySelectorAll('[aria-describedby], [aria-labelledby]'))
  for (const id of `${e.getAttribute('aria-describedby') ?? ''} ${e.getAttribute('aria-labelledby') ?? ''}`
    .split(' ').filter(Boolean))
    if (!document.getElementById(id)) wrong.push('described by nothing: ' + id);
const ids = [...document.querySelectorAll('[id]')].map((e) => e.id);
for (const id of new Set(ids.filter((id, i) => ids.indexOf(id) !== i))) wrong.push('twice: ' + id);
if (document.querySelectorAll('h1').length !== 1) wrong.push('not one main heading');
if (!document.documentElement.lang) wrong.push('no language');
if (!document.title) wrong.push('no title');
let level = 0;
for (const e of document.querySelectorAll('h1, h2, h3, h4')) {
  if (!visible(e)) continue;
  const own = Number(e.tagName[1]);
  if (own > level + 1) wrong.push('a heading leaves a level out: ' + e.textContent);
  level = own;
}
const canvas = new OffscreenCanvas(1, 1).getContext('2d', { willReadFrequently: true });
const rgba = (text) => {
  canvas.clearRect(0, 0, 1, 1);
  canvas.fillStyle = text;
  canvas.fillRect(0, 0, 1, 1);
  const [r, g, b, a] = canvas.getImageData(0, 0, 1, 1).data;
  return [r, g, b, a / 255];
};
const behind = (e) => {
  for (let up = e; up; up = up.parentElement) {
    const color = rgba(getComputedStyle(up).backgroundColor);
    if (color[3] > 0.99) return color;
  }
  return [255, 255, 255, 1];
};
const light = ([r, g, b]) => [r, g, b].map((c) => c / 255)
  .map((c) => (c <= 0.03928 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4))
  .reduce((sum, c, i) => sum + c * [0.2126, 0.7152, 0.0722][i], 0);
for (const e of document.querySelectorAll('body *')) {
  const own = [...e.childNodes].some((n) => n.nodeType === 3 && n.data.trim());
  if (!own || !visible(e) || e.closest(':disabled, [aria-disabled], [aria-hidden=true], svg, option')) continue;
  const [a, b] = [light(rgba(getComputedStyle(e).color)), light(behind(e))].sort((x, y) => y - x);
  const contrast = (a + 0.05) / (b + 0.05);
  if (contrast < 4.5) wrong.push(`contrast ${contrast.toFixed(2)}: ${e.outerHTML.slice(0, 100)}`);
}
if (document.documentElement.scrollWidth > document.documentElement.clientWidth)
  wrong.push(`wider than the window: ${document.documentElement.scrollWidth}`);
return wrong;
)js";

}  // namespace oam::test
