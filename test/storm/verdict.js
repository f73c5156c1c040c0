'use strict';
// How the storm runner judges one finished child. Kept apart from the runner so that the
// judgement itself is tested (test/js/60.storm.verdict.test.js).

// Written by the child when it exits: "storm-child: <scenario> #<iteration> exit <code>".
const MARK = 'storm-child:';

const markLine = (scenario, iteration, code) => `${MARK} ${scenario} #${iteration} exit ${code}`;

// Messages that mean a crash or a sanitizer report even when the exit code looks right.
const FATAL = [
  /terminate called after throwing/,
  /terminate called without an active exception/,
  /^FATAL ERROR:/m,
  /# Fatal error in/,
  /Segmentation fault|Aborted \(core dumped\)/,
  /WARNING: ThreadSanitizer:/,
  /ERROR: AddressSanitizer:/,
  /runtime error:/,
];

function tail(text, lines) {
  const all = String(text || '').replace(/\s+$/, '').split('\n');
  return all.slice(-lines).join('\n');
}

// The child's last line of its own: the addon may still write its teardown lines after it.
function lastMark(stdout) {
  const marks = String(stdout || '').split('\n').filter((l) => l.startsWith(MARK));
  return marks.length ? marks[marks.length - 1] : null;
}

// `result`: { scenario, iteration, expectedCode, status, signal, timedOut, timeoutMs, stdout,
// stderr }. Returns null for a clean run, else a one-line reason.
function judge(result) {
  const { scenario, iteration, expectedCode, status, signal, timedOut, timeoutMs, stdout, stderr } = result;
  // A scenario that found something wrong says what on standard error, before it exits
  // (which may bring down more: that is reported too, but the finding came first).
  const saidLine = String(stderr || '').split('\n').find((l) => l.startsWith(`${scenario} #`));
  const said = saidLine ? saidLine.slice(saidLine.indexOf(':') + 1).trim() : null;
  const after = said ? `; the scenario had failed: ${said}` : '';
  if (timedOut) return `timed out after ${Math.round(timeoutMs / 1000)} s${after}`;
  const fatal = FATAL.find((re) => re.test(stderr || ''));
  const fatalLine = fatal && (String(stderr).split('\n').find((l) => fatal.test(l)) || String(fatal)).trim();
  if (signal) return `killed by ${signal}${fatal ? `: ${fatalLine}` : ''}${after}`;
  if (fatal) return `exit ${status}, fatal message: ${fatalLine}${after}`;
  if (status !== expectedCode) return `exit ${status}, expected ${expectedCode}${said ? `: ${said}` : ''}`;
  const expected = markLine(scenario, iteration, expectedCode);
  const mark = lastMark(stdout);
  if (mark !== expected) return `last line ${JSON.stringify(mark)}, expected ${JSON.stringify(expected)}`;
  return null;
}

// Groups reasons that differ only in counts, so that a summary shows each kind once.
function reasonKind(reason) {
  return reason.replace(/\d+/g, 'N').replace(/e\.g\. .*$/, '').slice(0, 160);
}

module.exports = { MARK, markLine, judge, tail, lastMark, reasonKind };
