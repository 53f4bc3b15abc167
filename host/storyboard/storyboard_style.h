#pragma once

namespace tavenhall {

// The look of a storyboard. A tab is a radio button without its circle; the rules for each language's own tab
// are written beside the languages.
inline constexpr const char* kStoryboardStyle = R"css(
:root { color-scheme: light dark; --paper: #fff; --ink: #1d1d1f; --dim: #6e6e73; --line: #d2d2d7; --card: #f5f5f7;
  --window: #ececec; --pane: #fff; --accent: #0a63d8; --good: #1c7c33; --bad: #c01818; }
@media (prefers-color-scheme: dark) {
  :root { --paper: #161617; --ink: #f0f0f2; --dim: #9a9aa0; --line: #3a3a3d; --card: #1f1f21; --window: #2b2b2d;
    --pane: #1e1e20; --accent: #4a9bff; --good: #4fbf67; --bad: #ff6b60; }
}
* { box-sizing: border-box; }
body { margin: 0; padding: 2rem; background: var(--paper); color: var(--ink);
  font: 15px/1.45 -apple-system, "Helvetica Neue", "Segoe UI", "Liberation Sans", sans-serif; }
h1 { font-size: 1.6rem; margin: 0; }
h2 { font-size: 1.05rem; margin: 1.6rem 0 .5rem; }
header p, figcaption { color: var(--dim); margin: .2rem 0; }
input[name=language] { position: absolute; opacity: 0; pointer-events: none; }
nav { display: flex; flex-wrap: wrap; gap: .3rem; margin: 1.2rem 0; border-bottom: 1px solid var(--line); }
nav label { padding: .4rem .9rem; border-radius: 8px 8px 0 0; cursor: pointer; }
nav label:hover { background: var(--card); }
.story { display: none; }
.verdict { font-weight: 600; }
.passed { color: var(--good); }
.failed { color: var(--bad); }
.columns { display: grid; grid-template-columns: minmax(0, 1fr) minmax(0, 30rem); gap: 2.5rem; }
figure { margin: 0 0 2.2rem; break-inside: avoid; }
.pair { display: flex; flex-wrap: wrap; gap: 1.2rem; align-items: flex-start; margin-top: .4rem; }
.window { position: relative; flex: none; width: 540px; height: 372px; background: var(--window); overflow: hidden;
  border: 1px solid var(--line); border-radius: 10px; box-shadow: 0 6px 18px rgb(0 0 0 / 18%); font-size: 13px; }
.strip { height: 28px; line-height: 28px; text-align: center; color: var(--dim); }
.strip::before { content: ""; position: absolute; left: 12px; top: 8px; width: 12px; height: 12px; border-radius: 50%;
  background: #ff5f57; box-shadow: 20px 0 #febc2e, 40px 0 #28c840; }
.steps { position: absolute; left: 14px; top: 58px; width: 134px; margin: 0; padding: 0; list-style: none; }
.steps li { margin: 0 0 8px; padding-left: 16px; text-indent: -16px; overflow-wrap: anywhere; }
.steps li::before { content: "●"; font-size: 9px; color: var(--accent); margin-right: 8px; }
.steps .ahead { color: var(--dim); } .steps .ahead::before { color: var(--line); }
.steps .current-step { font-weight: 600; }
.title { position: absolute; left: 156px; top: 36px; right: 20px; height: 20px; overflow: hidden; white-space: nowrap;
  text-overflow: ellipsis; font-weight: 600; }
.pane { position: absolute; left: 156px; top: 62px; right: 20px; bottom: 52px; background: var(--pane);
  border: 1px solid var(--line); padding: 14px; }
.text { height: 158px; overflow: hidden; white-space: pre-wrap; overflow-wrap: anywhere; }
.bar { height: 8px; border-radius: 4px; background: var(--line); overflow: hidden; }
.bar div { height: 100%; background: var(--accent); }
.status { height: 20px; margin-top: 6px; overflow: hidden; white-space: nowrap; text-overflow: ellipsis;
  font-size: 11px; }
.buttons { position: absolute; right: 20px; bottom: 14px; display: flex; gap: 10px; }
.button { min-width: 84px; padding: 2px 12px; text-align: center; border-radius: 6px; background: var(--pane);
  border: 1px solid var(--line); }
.button.first { background: var(--accent); color: #fff; border-color: var(--accent); }
.button.off { opacity: .4; }
.prompt { position: absolute; left: 50%; top: 29px; width: 380px; transform: translateX(-50%); padding: 18px;
  background: var(--window); border: 1px solid var(--line); border-radius: 0 0 8px 8px;
  box-shadow: 0 10px 26px rgb(0 0 0 / 35%); overflow-wrap: anywhere; }
.prompt strong { display: block; margin-bottom: 6px; white-space: pre-wrap; }
.prompt p { margin: 0 0 12px; font-size: 11px; white-space: pre-wrap; }
.prompt .row { display: flex; flex-direction: row-reverse; gap: 10px; }
.terminal { position: relative; flex: none; width: 80ch; height: 28.8em; overflow: hidden; background: #16181d;
  color: #d8dae0; border-radius: 8px; outline: 8px solid #16181d; margin: 8px;
  font: 11px/1.2 "SF Mono", Menlo, "DejaVu Sans Mono", "Liberation Mono", monospace; }
.layer { position: absolute; background: #16181d; }
.terminal span { position: absolute; white-space: pre; }
.dim { color: #8a8f9c; } .strong, .heading, .current { font-weight: 700; color: #fff; } .current { color: #7cc4ff; }
.rule { color: #565c6a; } .good { color: #7ddc8f; } .warning { color: #f2c55c; } .bad { color: #ff8a80; }
.barDone { color: #4a9bff; } .barAhead { color: #3a3f4b; } .field { background: #2a2e38; }
.button-run { background: #2e3440; } .button-focused { background: #d8dae0; color: #16181d; }
.button-off { color: #565c6a; } .underlined { text-decoration: underline; }
pre { margin: 0; padding: 12px; background: var(--card); border-radius: 8px; white-space: pre-wrap;
  overflow-wrap: anywhere; font: 11.5px/1.4 "SF Mono", Menlo, "DejaVu Sans Mono", "Liberation Mono", monospace; }
@media (max-width: 1699px) { .columns { grid-template-columns: minmax(0, 1fr); } }
@media print {
  body { padding: 0; font-size: 11px; }
  nav { display: none; }
  .columns { display: block; }
  .window, .terminal { print-color-adjust: exact; zoom: .62; }
}
)css";

}  // namespace tavenhall
