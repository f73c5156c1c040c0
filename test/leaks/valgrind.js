'use strict';
// Reading memcheck's XML output (--xml=yes), and telling this project's share of it from
// node's and V8's: a record is ours when its stack passes through one of our binaries.

const path = require('path');

// The addon, the engine library and the simulated engine's control module.
const PROJECT_OBJECTS = ['OrvaVantixNodeNative.node', 'libOrvaVantixEngine.so', 'orva_sim_control.node'];

const LEAK_KINDS = {
  Leak_DefinitelyLost: 'definitely lost',
  Leak_IndirectlyLost: 'indirectly lost',
  Leak_PossiblyLost: 'possibly lost',
  Leak_StillReachable: 'still reachable',
};

const decode = (text) => text
  .replace(/&lt;/g, '<').replace(/&gt;/g, '>').replace(/&quot;/g, '"').replace(/&apos;/g, "'")
  .replace(/&amp;/g, '&');

function field(block, name) {
  const m = new RegExp(`<${name}>([\\s\\S]*?)</${name}>`).exec(block);
  return m ? decode(m[1].trim()) : null;
}

// Every <error> of the file: { kind, what, bytes, blocks, stacks: [[{ fn, obj }]] }. The
// first stack is where it happened (for a leak: where the block was allocated).
function parseErrors(xml) {
  const errors = [];
  for (const [, block] of xml.matchAll(/<error>([\s\S]*?)<\/error>/g)) {
    const xwhat = field(block, 'xwhat');
    const stacks = [...block.matchAll(/<stack>([\s\S]*?)<\/stack>/g)].map(([, stack]) =>
      [...stack.matchAll(/<frame>([\s\S]*?)<\/frame>/g)].map(([, frame]) => ({
        fn: field(frame, 'fn') || '???',
        obj: field(frame, 'obj') || '',
      })));
    errors.push({
      kind: field(block, 'kind'),
      what: xwhat ? field(xwhat, 'text') : field(block, 'what'),
      bytes: xwhat ? Number(field(xwhat, 'leakedbytes') || 0) : 0,
      blocks: xwhat ? Number(field(xwhat, 'leakedblocks') || 0) : 0,
      stacks,
    });
  }
  return errors;
}

const isProjectFrame = (frame) => PROJECT_OBJECTS.includes(path.basename(frame.obj));

// Index of the first frame of the first stack in our binaries, or -1.
function projectDepth(error) {
  return (error.stacks[0] || []).findIndex(isProjectFrame);
}

const passesThroughProject = (error) => error.stacks.some((stack) => stack.some(isProjectFrame));

// Bytes and blocks by leak kind, as in memcheck's LEAK SUMMARY (which is not in the XML).
function leakSummary(errors) {
  const summary = {};
  for (const label of Object.values(LEAK_KINDS)) summary[label] = { bytes: 0, blocks: 0 };
  for (const e of errors) {
    const label = LEAK_KINDS[e.kind];
    if (!label) continue;
    summary[label].bytes += e.bytes;
    summary[label].blocks += e.blocks;
  }
  return summary;
}

function formatSummary(summary) {
  return Object.entries(summary)
    .map(([label, { bytes, blocks }]) => `${label}: ${bytes.toLocaleString('en-US')} bytes in ${blocks} blocks`)
    .join('; ');
}

// A short stack for a report: the frames up to and including our first one.
function describeStack(error, frames = 8) {
  const stack = error.stacks[0] || [];
  const depth = projectDepth(error);
  const upTo = depth >= 0 ? Math.max(depth + 1, Math.min(frames, stack.length)) : frames;
  return stack.slice(0, upTo)
    .map((f) => `${f.fn.length > 110 ? `${f.fn.slice(0, 107)}...` : f.fn} (${path.basename(f.obj)})`);
}

// Blocks still held at exit whose allocation was made by our code itself (one of the first
// `depth` frames is ours), summed by that allocation path. Comparing two runs that differ
// only in their number of cycles shows what each cycle leaves behind.
function heldByProject(errors, depth = 6) {
  const held = new Map();
  for (const e of errors) {
    if (!LEAK_KINDS[e.kind]) continue;
    const d = projectDepth(e);
    if (d < 0 || d >= depth) continue;
    const key = e.stacks[0].slice(0, d + 1).map((f) => f.fn).join(' <- ');
    const entry = held.get(key) || { bytes: 0, blocks: 0, example: e };
    entry.bytes += e.bytes;
    entry.blocks += e.blocks;
    held.set(key, entry);
  }
  return held;
}

module.exports = {
  PROJECT_OBJECTS, parseErrors, passesThroughProject, projectDepth, leakSummary, formatSummary,
  describeStack, heldByProject,
};
