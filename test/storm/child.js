#!/usr/bin/env node
'use strict';
// One storm child: `node test/storm/child.js <scenario> <iteration>` runs that scenario once.
// Its last line of its own, written when the process exits, is
//   storm-child: <scenario> #<iteration> exit <code>
// so that the runner can tell an orderly exit from a crash that a host reports as 0. What
// the addon writes to standard output during teardown may follow it.

const fs = require('fs');
const { scenarios } = require('./scenarios');
const { markLine } = require('./verdict');

const [name, iterationText = '0'] = process.argv.slice(2);
const scenario = scenarios[name];
const iteration = Number(iterationText);
if (!scenario || !Number.isInteger(iteration)) {
  console.error(`usage: child.js <${Object.keys(scenarios).join('|')}> <iteration>`);
  process.exit(2);
}

process.on('exit', (code) => fs.writeSync(1, `${markLine(name, iteration, code)}\n`));

// A failed scenario may leave workers or event functions that keep the process alive:
// it ends at once.
scenario.run(iteration).catch((e) => {
  console.error(`${name} #${iteration}: ${(e && e.stack) || e}`);
  process.exit(1);
});
