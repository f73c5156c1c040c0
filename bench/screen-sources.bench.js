'use strict';
// getScreenCaptureSources end to end: ten windows, each with a 320 x 180 thumbnail and a
// 64 x 64 icon, from the call until the promise has resolved (the engine's list, PNG
// encoding and Base64 of twenty images, the script objects). Prints figures; asserts
// nothing. Run through bench/run.js (npm run bench) or alone:
//   node bench/screen-sources.bench.js
//
// The simulated engine hands out a scripted list (sim.setReturn) whose pictures are the
// gradients with noise of the "image" suite of orva_bench, so that both measure the same
// kind of picture; that suite has the encoding of one thumbnail and one icon alone, against
// stb_image_write's own deflate.

const path = require('path');
const paths = require('../scripts/paths');

const SOURCES = 10;
const WARM_UP = 2;
const RUNS = 21;

// B,G,R,A gradients with a little noise, as bench/image_bench.cc fills them.
function picture(width, height, seed) {
  const bgra = Buffer.alloc(width * height * 4);
  let noise = seed >>> 0;
  for (let y = 0; y < height; y++) {
    for (let x = 0; x < width; x++) {
      noise = (Math.imul(noise, 1664525) + 1013904223) >>> 0;
      const n = noise >>> 28;
      const i = (y * width + x) * 4;
      bgra[i] = (Math.floor((x * 255) / width) + n) & 0xff;
      bgra[i + 1] = (Math.floor((y * 255) / height) + n) & 0xff;
      bgra[i + 2] = Math.floor(((x + y) * 255) / (width + height)) & 0xff;
      bgra[i + 3] = 255;
    }
  }
  return bgra;
}

const median = (xs) => [...xs].sort((a, b) => a - b)[Math.floor(xs.length / 2)];

async function run() {
  const addon = require(paths.root);
  const sim = require(path.join(paths.root, 'engine', 'sim'));
  const wrapper = addon.CreateEngine({
    profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 'bench', electronVersion: 'bench',
  });
  try {
    sim.setReturn('orva_vantix_get_screen_capture_sources', Array.from({ length: SOURCES }, (_, i) => ({
      sourceType: 1,
      sourceID: 3000 + i,
      sourceName: `Window ${i}`,
      thumbnailImage: { buffer: picture(320, 180, 12345 + i), width: 320, height: 180 },
      iconImage: { buffer: picture(64, 64, 777 + i), width: 64, height: 64 },
    })));
    const sizes = { thumbnailWidth: 320, thumbnailHeight: 180, iconWidth: 64, iconHeight: 64 };
    const times = [];
    let text = 0;
    for (let r = 0; r < WARM_UP + RUNS; r++) {
      const t0 = process.hrtime.bigint();
      const sources = await wrapper.getScreenCaptureSources(sizes);
      const ms = Number(process.hrtime.bigint() - t0) / 1e6;
      if (sources.length !== SOURCES) throw new Error(`${sources.length} sources listed`);
      text = sources.reduce((n, s) => n + s.thumbnailImage.buffer.length + s.iconImage.buffer.length, 0);
      if (r >= WARM_UP) times.push(ms);
    }
    console.log(`== screen-sources: getScreenCaptureSources, ${SOURCES} windows (320x180 thumbnail, 64x64 icon)`);
    console.log(`  median ${median(times).toFixed(1)} ms, fastest ${Math.min(...times).toFixed(1)} ms, ` +
      `slowest ${Math.max(...times).toFixed(1)} ms over ${RUNS} calls; ${(text / 1024).toFixed(0)} KiB of Base64 text`);
    console.log('  one thumbnail and one icon alone: orva_bench image, lines "png thumbnail" / "png icon"');
  } finally {
    addon.DestroyEngine();
  }
}

run().catch((e) => {
  console.error(e);
  process.exitCode = 1;
});
