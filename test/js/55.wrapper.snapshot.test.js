'use strict';
// Snapshots as script receives them: { errorCode, image }, the image a Base64 JPEG that is
// decoded here to check its size and colours. The simulated engine's snapshot picture has four
// quadrants: red top left, green top right, blue bottom left, white bottom right.

const test = require('node:test');
const assert = require('node:assert');
const jpeg = require('jpeg-js');
const { loadAddon, loadSim, createEngine, engineForTest } = require('./support/addon-harness');
const { settled } = require('./support/wrapper-cases');

const QUADRANTS = { topLeft: [255, 0, 0], topRight: [0, 255, 0], bottomLeft: [0, 0, 255], bottomRight: [255, 255, 255] };

// The picture's size and the colour at the middle of each quadrant.
function look(image) {
  const picture = jpeg.decode(Buffer.from(image, 'base64'), { useTArray: true });
  const at = (fx, fy) => {
    const i = (Math.floor(picture.height * fy) * picture.width + Math.floor(picture.width * fx)) * 4;
    return [...picture.data.subarray(i, i + 3)];
  };
  return {
    width: picture.width,
    height: picture.height,
    colours: { topLeft: at(0.25, 0.25), topRight: at(0.75, 0.25), bottomLeft: at(0.25, 0.75), bottomRight: at(0.75, 0.75) },
  };
}

function assertQuadrants(colours) {
  for (const [where, expected] of Object.entries(QUADRANTS)) {
    const off = colours[where].map((c, i) => Math.abs(c - expected[i]));
    assert.ok(Math.max(...off) <= 24, `${where}: ${colours[where]} is not ${expected}`);
  }
}

test('snapshots', async (t) => {
  const { sim, session, engine } = engineForTest(t);

  const ROWS = [
    { method: 'takePublishStreamSnapshot', arg: { channel: 0 }, key: { channel: 0 } },
    { method: 'takePlayStreamSnapshot', arg: { streamID: 'peer' }, key: { streamID: 'peer' } },
  ];
  for (const row of ROWS) {
    await t.test(`${row.method}: an upright JPEG of the engine's picture, in its size and colours`, async () => {
      sim.reset();
      sim.autoComplete(false);
      const promise = engine[row.method](row.arg);
      const [{ seq }] = sim.pending();
      sim.complete(seq, { errorCode: 0, ...row.key, width: 96, height: 54 });
      const outcome = await settled(promise, 5000);
      assert.strictEqual(outcome.state, 'resolved');
      assert.deepStrictEqual(Object.keys(outcome.value), ['errorCode', 'image']);
      assert.strictEqual(outcome.value.errorCode, 0);
      const seen = look(outcome.value.image);
      assert.deepStrictEqual([seen.width, seen.height], [96, 54]);
      assertQuadrants(seen.colours);
    });

    await t.test(`${row.method}: an engine error gives "snap shot error!" with the engine's code`, async () => {
      sim.reset();
      sim.autoComplete(false);
      const promise = engine[row.method](row.arg);
      const [{ seq }] = sim.pending();
      sim.complete(seq, { errorCode: 1003, ...row.key });
      assert.deepStrictEqual(await settled(promise, 5000),
        { state: 'resolved', value: { errorCode: 1003, image: 'snap shot error!' } });
    });
  }

  await t.test('a publish snapshot answered by the engine itself has the channel\'s capture size', async () => {
    sim.reset();
    sim.autoComplete(true);
    engine.setVideoConfig({ config: 0, channel: 1 });  // 180p preset: 320 x 180
    const outcome = await settled(engine.takePublishStreamSnapshot({ channel: 1 }), 5000);
    assert.strictEqual(outcome.state, 'resolved');
    const seen = look(outcome.value.image);
    assert.deepStrictEqual([seen.width, seen.height], [320, 180]);
    assertQuadrants(seen.colours);
  });
});
