'use strict';
// Preloaded into Windows node.exe under Wine (node -r). node.exe crashes on its first
// console write when stdout/stderr is a Unix pipe (EBADF while creating the stdio stream),
// while plain synchronous writes to the same descriptors work. So process.stdout and
// process.stderr are replaced, before anything touches them, by streams that write with
// fs.writeSync. console uses them too, since it binds to the process streams lazily.

const fs = require('fs');
const { Writable } = require('stream');

function writeAll(fd, buffer) {
  let offset = 0;
  while (offset < buffer.length) {
    try {
      offset += fs.writeSync(fd, buffer, offset, buffer.length - offset);
    } catch (e) {
      if (e.code !== 'EAGAIN') throw e;
    }
  }
}

function syncStream(fd) {
  const stream = new Writable({
    decodeStrings: true,
    write(chunk, _encoding, callback) {
      try {
        writeAll(fd, chunk);
        callback();
      } catch (e) {
        callback(e);
      }
    },
  });
  stream.fd = fd;
  stream.isTTY = false;
  stream._isStdio = true;
  // The descriptors belong to the process: never close them.
  stream.destroySoon = () => {};
  stream._destroy = (err, callback) => callback(err);
  return stream;
}

for (const [name, fd] of [['stdout', 1], ['stderr', 2]]) {
  const stream = syncStream(fd);
  Object.defineProperty(process, name, {
    configurable: true,
    enumerable: true,
    get: () => stream,
  });
}
