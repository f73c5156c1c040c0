'use strict';
// A short fuzzing session in a worker thread (started by Session.workerStep): it creates the
// engine in this environment first, so that events are on their way to it when the main
// thread terminates it. Findings go to the main thread as messages.

const { parentPort, workerData } = require('worker_threads');
const { Session } = require('./session');
const { classifyUncaught, describeError } = require('./oracle');

const session = new Session({
  seed: workerData.seed,
  progressFile: workerData.progressFile,
  label: workerData.label,
  report: (record) => parentPort.postMessage(record),
});

process.on('uncaughtException', (error) => {
  if (classifyUncaught(error) !== null) return;
  session.finding('uncaught', describeError(error), { error: describeError(error), last: session.current });
});
process.on('unhandledRejection', () => {});

(async () => {
  session.createEngine();
  await session.run(workerData.calls);
  session.finish();
  parentPort.postMessage({ type: 'done', ...session.summary() });
})();
