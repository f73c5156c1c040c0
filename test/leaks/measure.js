'use strict';
// Memory figures of a leak check child, taken after full collections.

const v8 = require('v8');

v8.setFlagsFromString('--expose-gc');
const gc = require('vm').runInNewContext('gc');

const sleep = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

// Several collections a few ms apart: finalisers queued by one (event functions, buffers)
// run on the loop before the next.
async function collect() {
  for (let i = 0; i < 4; i++) {
    gc();
    await sleep(10);
  }
  const m = process.memoryUsage();
  return { rss: m.rss, heapTotal: m.heapTotal, heapUsed: m.heapUsed, external: m.external };
}

module.exports = { collect, gc, sleep };
