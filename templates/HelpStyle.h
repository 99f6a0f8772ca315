// The style sheet of the help pages.
#pragma once

namespace zoka {

inline constexpr const char* kHelpStyle = R"(body {
    max-width: 46em;
    margin: 2em auto;
    padding: 0 1.5em 3em;
    font: 15px/1.55 "Segoe UI", "Helvetica Neue", Arial, sans-serif;
    color: #23282d;
    background: #fff;
}
h1 { margin: 0 0 1em; padding-bottom: .3em; border-bottom: 3px solid #2f6f9f; font-size: 1.9em; font-weight: 300; }
h2 { margin: 1.6em 0 .4em; font-size: 1.35em; font-weight: 600; color: #1d4e73; }
h3 {
    margin: 1.3em 0 .3em;
    font-size: .8em;
    letter-spacing: .08em;
    text-transform: uppercase;
    color: #6b7680;
}
a { color: #2f6f9f; text-decoration: none; }
a:hover { text-decoration: underline; }
ul { margin: .3em 0; padding-left: 1.3em; }
li { margin: .2em 0; }
b { font-weight: 600; }
h3 + b, h3 ~ b { font-family: Consolas, "DejaVu Sans Mono", monospace; font-size: .93em; }
.edition {
    margin: 0 .15em;
    border-radius: 3px;
    font-size: .75em;
    font-weight: 600;
    color: #fff;
    background: #2f6f9f;
}
)";

}  // namespace zoka
