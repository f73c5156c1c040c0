'use strict';
// The fuzzer's only source of randomness: sfc32 seeded through splitmix32, so that a 32-bit
// seed replays the same calls on any machine and Node version (Math.random cannot be seeded).

function splitmix32(value) {
  let z = (value + 0x9e3779b9) | 0;
  z = Math.imul(z ^ (z >>> 16), 0x21f0aaad);
  z = Math.imul(z ^ (z >>> 15), 0x735a2d97);
  return (z ^ (z >>> 15)) >>> 0;
}

// The seed of chunk `index` of a run seeded with `master`. Chunks of one run get unrelated
// seeds, and a chunk can be replayed from its own seed alone.
function chunkSeed(master, index) {
  return splitmix32((master ^ Math.imul(index + 1, 0x85ebca6b)) >>> 0);
}

class Rng {
  constructor(seed) {
    let s = seed >>> 0;
    this.a = s = splitmix32(s);
    this.b = s = splitmix32(s);
    this.c = s = splitmix32(s);
    this.d = 1;
    for (let i = 0; i < 12; i++) this.u32();
  }

  u32() {
    const t = (((this.a + this.b) | 0) + this.d) | 0;
    this.d = (this.d + 1) | 0;
    this.a = this.b ^ (this.b >>> 9);
    this.b = (this.c + (this.c << 3)) | 0;
    this.c = (this.c << 21) | (this.c >>> 11);
    this.c = (this.c + t) | 0;
    return t >>> 0;
  }

  // [0, 1)
  float() { return this.u32() / 4294967296; }

  // An integer in [0, n).
  int(n) { return Math.floor(this.float() * n); }

  // An integer in [lo, hi].
  range(lo, hi) { return lo + this.int(hi - lo + 1); }

  chance(p) { return this.float() < p; }

  pick(list) { return list[this.int(list.length)]; }

  // One of `table`'s [weight, value] rows, with probability proportional to its weight.
  weighted(table) {
    let total = 0;
    for (const [w] of table) total += w;
    let x = this.float() * total;
    for (const [w, value] of table) {
      if ((x -= w) < 0) return value;
    }
    return table[table.length - 1][1];
  }
}

module.exports = { Rng, splitmix32, chunkSeed };
