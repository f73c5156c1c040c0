'use strict';
// getScreenCaptureSources as script receives it: one object per source in the engine's order,
// each image a Base64 PNG that is decoded here to check its size and colours (the engine's
// pixels are blue, green, red, alpha; PNG's red, green, blue, alpha). Missing keys, wrong
// types and the absent engine are among the generated cases of the messaging family.

const test = require('node:test');
const assert = require('node:assert');
const { PNG } = require('pngjs');
const { loadAddon, loadSim, createEngine } = require('./support/addon-harness');
const { settled } = require('./support/wrapper-cases');

const SIZES = { thumbnailWidth: 32, thumbnailHeight: 18, iconWidth: 8, iconHeight: 8 };

function decode({ buffer, width, height }) {
  const png = PNG.sync.read(Buffer.from(buffer, 'base64'));
  assert.deepStrictEqual([png.width, png.height], [width, height], 'the PNG has the reported size');
  return png;
}

const pixel = (png, x, y) => [...png.data.subarray((y * png.width + x) * 4, (y * png.width + x) * 4 + 4)];

test('screen capture sources', async (t) => {
  const addon = loadAddon();
  const sim = loadSim();
  const session = createEngine(addon);
  t.after(() => session.destroy());
  const list = async (sizes = SIZES) => {
    const outcome = await settled(session.engine.getScreenCaptureSources(sizes), 5000);
    assert.strictEqual(outcome.state, 'resolved');
    return outcome.value;
  };

  await t.test('the engine\'s screens and windows, in its order, with PNG thumbnails and icons of the asked sizes', async () => {
    sim.reset();
    const sources = await list();
    assert.deepStrictEqual(sources.map((s) => Object.keys(s).join()),
      Array(3).fill('sourceType,sourceID,sourceName,thumbnailImage,iconImage'));
    assert.deepStrictEqual(sources.map((s) => [s.sourceType, s.sourceID, s.sourceName]),
      [[2, 1001, 'Sim Screen 1'], [2, 1002, 'Sim Screen 2'], [1, 2001, 'Sim Window']]);
    const thumbnails = sources.map((s) => decode(s.thumbnailImage));
    const icons = sources.map((s) => decode(s.iconImage));
    assert.deepStrictEqual(thumbnails.map((p) => [p.width, p.height]), Array(3).fill([32, 18]));
    assert.deepStrictEqual(icons.map((p) => [p.width, p.height]), Array(3).fill([8, 8]));
    // The simulated pictures are gradients up to their tint in the bottom-right corner: Sim
    // Screen 1 is tinted 0x3080ff, its icon the complement. Blue and red come out exchanged
    // from the engine's order.
    assert.deepStrictEqual(pixel(thumbnails[0], 31, 17), [0x30, 0x80, 0xff, 255]);
    assert.deepStrictEqual(pixel(icons[0], 7, 7), [0xcf, 0x7f, 0x00, 255]);
    const distinct = new Set([...thumbnails, ...icons].map((p) => p.data.toString('base64')));
    assert.strictEqual(distinct.size, 6, 'every image its own');
  });

  await t.test('pixels, identities and names come through exactly; images the engine could not give are empty', async () => {
    sim.reset();
    const bgra = [10, 20, 30, 255, 200, 100, 50, 128];
    sim.setReturn('orva_vantix_get_screen_capture_sources', [
      {
        sourceType: 1, sourceID: 2 ** 40 + 5, sourceName: 'Fenêtre – 文档',
        thumbnailImage: { buffer: Buffer.from(bgra), width: 2, height: 1 },
        // No icon: the engine reports a 0 x 0 image.
        iconImage: { buffer: Buffer.alloc(0), width: 0, height: 0 },
      },
      {
        sourceType: 2, sourceID: -1, sourceName: '',
        // Fewer bytes than width x height x 4: never read past them.
        thumbnailImage: { buffer: Buffer.from([1, 2, 3, 4]), width: 2, height: 2 },
        iconImage: { buffer: Buffer.from([9, 8, 7, 6]), width: 1, height: 1 },
      },
    ]);
    const [window, screen] = await list();
    assert.deepStrictEqual([window.sourceType, window.sourceID, window.sourceName], [1, 2 ** 40 + 5, 'Fenêtre – 文档']);
    const png = decode(window.thumbnailImage);
    assert.deepStrictEqual([pixel(png, 0, 0), pixel(png, 1, 0)], [[30, 20, 10, 255], [50, 100, 200, 128]]);
    assert.deepStrictEqual(window.iconImage, { buffer: '', width: 0, height: 0 });
    assert.deepStrictEqual([screen.sourceType, screen.sourceID, screen.sourceName], [2, -1, '']);
    assert.deepStrictEqual(screen.thumbnailImage, { buffer: '', width: 2, height: 2 });
    assert.deepStrictEqual(pixel(decode(screen.iconImage), 0, 0), [7, 8, 9, 6]);
  });

  await t.test('an engine with nothing to capture gives an empty array', async () => {
    sim.reset();
    sim.setReturn('orva_vantix_get_screen_capture_sources', []);
    assert.deepStrictEqual(await list(), []);
  });
});
