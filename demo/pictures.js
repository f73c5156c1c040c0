'use strict';
// Saving what the tour sees: raw frames (R, G, B, A bytes, rows top-down, as the addon copies
// them into a registered Buffer) as PNG pictures; snapshots (Base64 JPEG text) and capture
// source thumbnails (Base64 PNG text) as the files they encode.

const fs = require('fs');
const path = require('path');
const { PNG } = require('pngjs');

const OUTPUT = path.join(__dirname, 'output');

function outputPath(name) {
  fs.mkdirSync(OUTPUT, { recursive: true });
  return path.join(OUTPUT, name);
}

// `pixels`: a Buffer that no longer receives frames (see the tour for how).
function saveFrameAsPng(name, pixels, width, height) {
  const png = new PNG({ width, height });
  Buffer.from(pixels.subarray(0, width * height * 4)).copy(png.data);
  const file = outputPath(name);
  fs.writeFileSync(file, PNG.sync.write(png));
  return file;
}

function saveBase64File(name, base64) {
  const file = outputPath(name);
  fs.writeFileSync(file, Buffer.from(base64, 'base64'));
  return file;
}

module.exports = { OUTPUT, saveFrameAsPng, saveBase64File };
