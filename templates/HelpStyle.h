// The style sheet of the help pages.
#pragma once

namespace zoka {

// The pages' markup is fixed: text stands beside its headings without elements of its own, and empty paragraphs
// part the scripts of a class page.
inline constexpr const char* kHelpStyle = R"(html { background: #eef2f5; }
body {
    max-width: 46em;
    margin: 2.5em auto;
    padding: 2.2em 3em 3em;
    border-top: 4px solid #2f6f9f;
    border-radius: 4px;
    box-shadow: 0 1px 4px rgba(20, 40, 60, .18);
    font: 15px/1.55 "Segoe UI", "Helvetica Neue", Arial, sans-serif;
    color: #23282d;
    background: #fff;
}
h1, body > h2:first-child { margin: 0 0 .5em; font-size: 1.9em; font-weight: 300; color: #1d4e73; }
h1 + p { margin-top: -.6em; color: #6b7680; }
h2 {
    margin: 1.7em 0 .5em;
    padding-top: .9em;
    border-top: 1px solid #dde4ea;
    font-size: 1.3em;
    font-weight: 600;
    color: #1d4e73;
}
body > h2:first-child { padding: 0; border: 0; }
h3 {
    margin: 1.4em 0 .3em;
    font-size: .78em;
    letter-spacing: .07em;
    text-transform: uppercase;
    color: #6b7680;
}
h3 + br { display: none; }
p { margin: 0; line-height: .7; }
h1 + p { line-height: 1.55; }
a { color: #2f6f9f; text-decoration: none; }
a:hover { text-decoration: underline; }
ul { margin: .3em 0; padding: 0; list-style: none; }
li { padding: .28em 0; }
li + li { border-top: 1px solid #f0f3f6; }
h2 + ul a { font-weight: 600; }
b { font-weight: 600; }
h3 + b, h3 ~ b {
    padding: .1em .4em;
    border-radius: 3px;
    font: .9em Consolas, "DejaVu Sans Mono", monospace;
    background: #eef2f5;
}
b:empty { display: none; }
.edition {
    margin: 0 .15em;
    border-radius: 3px;
    font-size: .72em;
    font-weight: 600;
    color: #fff;
    background: #2f6f9f;
}
)";

}  // namespace zoka
