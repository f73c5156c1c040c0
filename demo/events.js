'use strict';
// Script receives everything the engine says through callbacks of the shape (name, payload).
// This keeps the events that arrive and lets the tour wait for the next one it needs.

class EventLog {
  constructor({ print = () => false } = {}) {
    this.print = print;  // (name, payload) -> whether to print the event
    this.waiters = [];
  }

  // The callback to hand to CreateEngine / registerEventHandler.
  get listener() {
    return (name, payload) => this.dispatch(name, payload);
  }

  dispatch(name, payload) {
    if (this.print(name, payload)) console.log(`   event ${name} ${JSON.stringify(payload)}`);
    this.waiters = this.waiters.filter((w) => {
      if (w.name !== name || !w.matches(payload)) return true;
      clearTimeout(w.timer);
      w.resolve(payload);
      return false;
    });
  }

  // The payload of the next event `name` for which matches(payload) holds.
  next(name, matches = () => true, ms = 5000) {
    return new Promise((resolve, reject) => {
      const waiter = { name, matches, resolve };
      waiter.timer = setTimeout(() => {
        this.waiters = this.waiters.filter((w) => w !== waiter);
        reject(new Error(`no "${name}" within ${ms} ms`));
      }, ms);
      this.waiters.push(waiter);
    });
  }
}

module.exports = { EventLog };
