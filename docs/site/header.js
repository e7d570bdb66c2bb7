// Shows a public header to Doxygen as its readers see it:
//
// - a comment holds for all declarations below it, up to an empty line or the next comment; but not
//   for copying and moving, which without a comment of its own is what one expects of the class;
// - a comment on a namespace is about the header, which gets a page of its own;
// - friends, and classes that are only announced, are the library's own business.
//
//   node header.js <header>
//
// Lines keep their numbers: what is added to a line ends in \ilinebr, Doxygen's own line break.

const fs = require('fs');
const path = require('path');

const file = process.argv[2];
const family = path.basename(file, '.h');

// A full stop and a blank would end the first sentence: "1 .. n" gets a blank of another kind.
const lines = fs.readFileSync(file, 'utf8').replace(/ \.\. /g, ' ..\u00a0').split('\n');

const isPrivate = (line, i) => /\bfriend (class|struct) /.test(line) ||
    /^(template <.*> )?(class|struct) \w+;$/.test(line) && !lines[i - 1].startsWith('///');
lines.forEach((line, i) => { lines[i] = isPrivate(line, i) ? '' : line; });

const comment = text => '/** ' + text.join(' \\ilinebr ') + ' */ ';
const textOf = line => line.replace(/^ *\/\/\/ ?/, '');

// The comment that ends above line n.
function commentAbove(n) {
    const text = [];
    for (let i = n - 1; i >= 0 && /^ *\/\/\//.test(lines[i]); --i)
        text.unshift(textOf(lines[i]));
    return text;
}

const isCopying = line => /\b(\w+)\((const \1 ?&|\1 ?&&)|operator=\(/.test(line);

// Repeats each comment for the further declarations that it holds for. The layout tells what is
// what: declarations begin in column 0 or, in a class, in column 4; all else is indented further.
function repeatComments() {
    let column = 0;
    let text = [];  // empty where a comment of its own, or none, is above
    let inBody = false;
    let last = '';  // the line on which the last declaration began
    for (let i = 0; i < lines.length; ++i) {
        const line = lines[i];
        const indent = line.search(/\S/);
        if (inBody) {
            inBody = !(line[column] === '}' && indent === column);
            continue;
        }
        if (indent < 0 || /^ *(\/\/|#|public:|protected:|private:|\})/.test(line)) {
            text = [];
            if (line.startsWith('}'))
                column = 0;
            continue;
        }
        if (indent !== column)
            continue;
        if (line[column] === '{') {
            inBody = !/^(template <.*> *)?(class|struct|namespace) /.test(last);
            if (!inBody) {
                column = last.startsWith('namespace') ? 0 : 4;
                text = [];
            }
            continue;
        }
        const own = commentAbove(i);
        const copying = / = delete;/.test(line) ? 'Not to be copied.'
            : 'Copies or moves, as the class says.';
        const held = isCopying(line) ? [copying] : text;
        if (own.length > 0)
            text = own;
        else if (held.length > 0 && !/~|using \w+::/.test(line) && !/^ *template <.*>$/.test(last))
            lines[i] = ' '.repeat(column) + comment(held) + line.trimStart();
        last = line;
    }
}

// Makes a page of the header: a group of all that its last namespace holds. (Namespaces before that
// one only announce a name.) Without one, all that follows the first comment, which is about the
// header if an empty line comes after it.
function makePage() {
    const group = `header_${family}`;
    const about = fs.existsSync(`docs/${family}.md`) ? ['', `Explained in \\ref ${family}.`] : [];
    const title = file.replace(/.*include\//, '');
    const page = text => comment([`\\defgroup ${group} ${title}`, ...text, ...about]);
    const open = comment([`\\addtogroup ${group}`, '@{']);
    const close = '/** @} */ ';

    const begin = lines.findLastIndex(line => /^namespace /.test(line));
    if (begin < 0) {
        const first = lines.findIndex(line => line.startsWith('///'));
        const after = lines.findIndex((line, i) => i > first && !line.startsWith('///'));
        const isAlone = lines[after] === '';
        lines[first - 1] = page(isAlone ? commentAbove(after) : []) + open;
        if (isAlone)
            lines.fill('', first, after);
        lines.push(close);
        return;
    }
    const text = commentAbove(begin);
    lines.fill('', begin - text.length, begin);
    lines[begin] = page(text) + lines[begin];
    lines[begin + 1] += ' ' + open;
    const end = lines.findLastIndex(line => line.startsWith('}  // namespace'));
    lines[end] = close + lines[end];
}

repeatComments();
makePage();
process.stdout.write(lines.join('\n'));
