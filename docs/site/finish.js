// Finishes the pages that Doxygen has made: typesets their formulas, so that they need no script to
// be read, and holds every link against what is there.
//
//   node finish.js <folder of the pages>

const fs = require('fs');
const path = require('path');
const katex = require('katex');

const folder = process.argv[2];
const errors = [];
const unescape = text => text.replace(/&lt;/g, '<').replace(/&gt;/g, '>').replace(/&quot;/g, '"')
    .replace(/&#39;/g, "'").replace(/&amp;/g, '&');

function typeset(page, html) {
    const sheet = '<link href="katex/katex.min.css" rel="stylesheet" type="text/css"/>\n</head>';
    const write = (formula, displayMode) => {
        try {
            return katex.renderToString(unescape(formula).trim(), {displayMode, strict: 'error'});
        } catch (error) {
            errors.push(`${page}: ${error.message}`);
            return '';
        }
    };
    const code = /<(pre|code)\b.*?<\/\1>|<div class="line">.*?<\/div>/;
    const formulas = /\\\[(?<display>.*?)\\\]|\\\((?<inline>.*?)\\\)/;
    const parts = new RegExp(`${code.source}|${formulas.source}`, 'gs');
    return html
        .replace(/<script[^>]*>[^<]*MathJax[^<]*<\/script>/g, '')
        .replace(/<script[^>]*MathJax\.js[^>]*><\/script>/g, '')
        .replace('</head>', sheet)
        .replace(parts, (match, ...rest) => {
            const {display, inline} = rest.at(-1);
            return display ? write(display, true) : inline ? write(inline, false) : match;
        });
}

const pages = new Map();
for (const page of fs.readdirSync(folder).filter(name => name.endsWith('.html'))) {
    const html = typeset(page, fs.readFileSync(path.join(folder, page), 'utf8'));
    fs.writeFileSync(path.join(folder, page), html);
    pages.set(page, {
        names: new Set([...html.matchAll(/\b(?:id|name)="([^"]+)"/g)].map(match => match[1])),
        links: [...html.matchAll(/\b(?:href|src)="([^"]+)"/g)].map(match => unescape(match[1])),
    });
}

for (const [page, {links}] of pages) {
    // Doxygen links to lists of nested classes where only private ones would be.
    const isOurs = link => !/^(https?|javascript|data):|^#nested-classes$/.test(link);
    for (const link of links.filter(isOurs)) {
        const [file, name] = link.split('#');
        if (file && !fs.existsSync(path.join(folder, file)))
            errors.push(`${page}: nothing is at ${link}`);
        else if (name && pages.has(file || page) && !pages.get(file || page).names.has(name))
            errors.push(`${page}: no heading is at ${link}`);
    }
}

for (const error of new Set(errors))
    process.stderr.write(`error: ${error}\n`);
process.exit(errors.length > 0 ? 1 : 0);
