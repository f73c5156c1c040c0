'use strict';
// Windows only (node.exe under Wine in CI): a publish snapshot through the real GDI+ path.
// The simulated engine hands over an HBITMAP of its four-quadrant picture (red, green / blue,
// white); the addon encodes it with GDI+ on the engine thread and resolves { errorCode,
// image }. Decodes the JPEG and checks its size and colours. Closes with
// "snapshot: N passed, M failed" and exits non-zero on any failure:
//
//   scripts/wine/node.sh --expect '^snapshot: [0-9]+ passed, 0 failed$' test/wine/snapshot.js
//
// The build is the one ORVA_BUILD names (default here: mingw).

const path = require('path');

process.env.ORVA_BUILD = process.env.ORVA_BUILD || 'mingw';
const root = path.resolve(__dirname, '..', '..');
const jpeg = require(path.join(root, 'node_modules', 'jpeg-js'));
let addon = null;

const WIDTH = 96;
const HEIGHT = 54;
// GDI+ applies its own JPEG quality, and Wine ignores a requested one.
const TOLERANCE = 40;

let passed = 0;
let failed = 0;
function check(ok, what) {
  console.log(`${ok ? 'ok  ' : 'FAIL'} ${what}`);
  if (ok) passed += 1;
  else failed += 1;
}

function finish() {
  if (!addon) return;
  addon.DestroyEngine();
  console.log(`snapshot: ${passed} passed, ${failed} failed`);
  process.exitCode = failed === 0 && passed > 0 ? 0 : 1;
}

async function main() {
  if (process.platform !== 'win32') {
    console.log('snapshot.js runs under Windows node.exe only (scripts/wine/node.sh)');
    process.exitCode = 2;
    return;
  }
  addon = require(root);
  const engine = addon.CreateEngine({
    profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 'wine', electronVersion: 'wine',
  });
  engine.setVideoConfig({
    config: { captureWidth: WIDTH, captureHeight: HEIGHT, encodeWidth: WIDTH, encodeHeight: HEIGHT, fps: 15, bitrate: 300, codecID: 0 },
    channel: 0,
  });
  const timeout = new Promise((resolve) => setTimeout(() => resolve(null), 10000));
  const result = await Promise.race([engine.takePublishStreamSnapshot({ channel: 0 }), timeout]);
  check(result !== null, 'the snapshot promise resolves');
  if (!result) return;
  check(result.errorCode === 0, `errorCode 0 (got ${result.errorCode})`);
  check(typeof result.image === 'string' && result.image.startsWith('/9j/'), `image is Base64 JPEG (${String(result.image).slice(0, 24)})`);
  let picture;
  try {
    picture = jpeg.decode(Buffer.from(result.image, 'base64'), { useTArray: true });
  } catch (e) {
    check(false, `the JPEG decodes (${e.message})`);
    return;
  }
  check(picture.width === WIDTH && picture.height === HEIGHT, `size ${picture.width} x ${picture.height}`);
  const expected = { 'top left': [255, 0, 0], 'top right': [0, 255, 0], 'bottom left': [0, 0, 255], 'bottom right': [255, 255, 255] };
  const spots = { 'top left': [0.25, 0.25], 'top right': [0.75, 0.25], 'bottom left': [0.25, 0.75], 'bottom right': [0.75, 0.75] };
  for (const [where, [fx, fy]] of Object.entries(spots)) {
    const i = (Math.floor(HEIGHT * fy) * WIDTH + Math.floor(WIDTH * fx)) * 4;
    const got = [...picture.data.subarray(i, i + 3)];
    const off = Math.max(...got.map((c, k) => Math.abs(c - expected[where][k])));
    check(off <= TOLERANCE, `${where} is ${expected[where]} (got ${got})`);
  }
}

main().catch((e) => check(false, `no exception (${e && e.stack})`)).finally(finish);
