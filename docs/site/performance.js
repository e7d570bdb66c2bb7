// Writes the page "Performance": the tables of times of all pages, each with what it says of the
// machine and the command. The figures stand in the pages of the families alone.
//
//   node performance.js <page>...

const fs = require('fs');

const sections = process.argv.slice(2).map(page => {
    const text = fs.readFileSync(page, 'utf8');
    const title = text.match(/^# (.*)$/m)[1];
    const tables = text.match(/(?:.+\n)+\n\| workload (?:.*\n\|)+.*\n/g) ?? [];
    const section = `\n## ${title}\n\n${tables.join('\n')}\n`;
    return tables.length === 0 ? '' : `${section}What is compared: [${title}](../../../${page}).\n`;
});

console.log(`# Performance

The times that the pages of the families tell, in one place. \`scripts/bench\` measures them anew.
${sections.join('')}`);
