// Shows a page, which is written to be read in the tree, to Doxygen as a page of the site:
//
// - links to pages, headers and examples lead to the site's own, those to headings as well;
// - formulas stand between Doxygen's marks;
// - what is printed or typed is not taken for C++.
//
//   node page.js <page>
//
// Lines keep their numbers, and a link that leads nowhere is an error.

const fs = require('fs');
const path = require('path');

const file = path.relative('.', process.argv[2]);

const nameOf = page => path.basename(page, '.md').toLowerCase();

// The name that a heading has in links to it, in the tree.
const anchorOf = heading => heading.trim().toLowerCase().replace(/[^\w\- ]/g, '')
    .replace(/ /g, '-');

const labelOf = (page, anchor) => anchor ? `${nameOf(page)}-${anchor}` : nameOf(page);

function fail(what) {
    process.stderr.write(`${file}:1: error: ${what}\n`);
    process.exit(1);
}

function headingsOf(page) {
    const text = fs.readFileSync(page, 'utf8').replace(/^```.*?^```/gms, '');
    return [...text.matchAll(/^#+ (.*)$/gm)].map(match => anchorOf(match[1]));
}

function target(link) {
    if (/^https?:/.test(link))
        return link;
    const [place, anchor] = link.split('#');
    const found = place ? path.join(path.dirname(file), place) : file;
    if (!fs.existsSync(found))
        fail(`the link ${link} leads nowhere`);
    if (anchor && !headingsOf(found).includes(anchor))
        fail(`the link ${link} names no heading`);
    if (found === 'data/README.md')  // scripts/docs calls it data.md, for want of a name of its own
        return '@ref data';
    if (found.endsWith('.md'))
        return '@ref ' + labelOf(found, anchor);
    if (found.startsWith('src/'))
        return found;
    if (found.endsWith('.h'))
        return `group__header__${path.basename(found, '.h').replace(/_/g, '__')}.html`;
    if (found.startsWith('examples/'))
        return path.basename(found).replace('.cpp', '_8cpp-example.html');
    if (found.startsWith('data/') || found.endsWith('.png'))
        return path.basename(found);
    fail(`the link ${link} leads out of the site`);
}

// What stands first in this list takes all that it matches: nothing in code is a formula.
const parts = new RegExp([
    /^```(?<language>\w*)(?<block>\n.*?^```)/,
    /(?<code>`[^`]+`)/,
    /^(?<marks>#+) (?<heading>[^\n]*)$/,
    /\$\$(?<display>.+?)\$\$/,
    /\$(?<inline>.+?)\$/,
    /\[!\[(?<alt>[^\]]*)\]\((?<image>[^()\s]+)\)\]\((?<to>[^()\s]+)\)/,
    /\]\((?<link>[^()\s]+)\)/,
].map(part => part.source).join('|'), 'gms');

process.stdout.write(fs.readFileSync(file, 'utf8').replace(parts, (match, ...rest) => {
    const part = rest.at(-1);
    if (part.block)
        return '```' + (part.language === 'cpp' ? '{.cpp}' : '{.unparsed}') + part.block;
    if (part.code)  // Doxygen ends it at an apostrophe unless there are two marks
        return match.includes("'") ? `\`${match}\`` : match;
    if (part.heading)
        return `${match} {#${labelOf(file, part.marks === '#' ? '' : anchorOf(part.heading))}}`;
    if (part.display)
        return `\\f[${part.display}\\f]`;
    if (part.inline)
        return `\\f$${part.inline}\\f$`;
    if (part.image) {  // a picture that is a link, which Doxygen doesn't know
        const page = target(part.to).replace(/^@ref ((\w+)(-.+)?)$/, (all, name, page, anchor) =>
            anchor ? `${page}.html#${name}` : `${page}.html`);
        return `<a href="${page}"><img src="${target(part.image)}" alt="${part.alt}"/></a>`;
    }
    if (part.link)
        return `](${target(part.link)})`;
    return match;
}));
