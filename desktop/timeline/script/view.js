
// The stretch of time that is in view.

const kShortestView = 30 * kSecond;
const kSeveralDays = 2.1 * kDay; // from here on days have strips

class View {
  constructor(history) {
    this.history = history;
    [this.start, this.end] = history.shown;
    this.onChange = () => {};
  }

  get length() {
    return this.end - this.start;
  }

  get isWhole() {
    return this.start <= this.#least && this.end >= this.#most;
  }

  get isSeveralDays() {
    return this.length > kSeveralDays;
  }

  // Shows the time from `start` to `end`, as far as the period goes. False where that changes nothing.
  set(start, end) {
    const range = this.#within(start, end);
    if (range.start === this.start && range.end === this.end) return false;
    Object.assign(this, range);
    this.onChange();
    return true;
  }

  // Makes the view `factor` times as long around `time`. False where it cannot be.
  zoom(factor, time = (this.start + this.end) / 2) {
    const length = Math.max(this.length * factor, kShortestView);
    const share = (time - this.start) / this.length;
    return this.set(time - share * length, time + (1 - share) * length);
  }

  pan(time) {
    return this.set(this.start + time, this.end + time);
  }

  showWhole() {
    this.glide(...this.history.shown);
  }

  showDay(index) {
    const day = this.history.days[index];
    if (day) this.glide(day.start, day.end);
  }

  // What is in view, or will be once the view has come to rest.
  get goal() {
    return this.#goal ?? { start: this.start, end: this.end };
  }

  // The day that fills the view; -1 when none does.
  get day() {
    const { start, end } = this.goal;
    return this.history.days.findIndex((day) =>
      Math.abs(day.start - start) < kSecond && Math.abs(day.end - end) < kSecond);
  }

  // The day to go to from here; absent at the ends of the period.
  neighbour(direction) {
    const { history } = this;
    const { start, end } = this.goal;
    const isWhole = start <= this.#least && end >= this.#most;
    if (isWhole && history.days.length > 1) return direction > 0 ? 0 : history.days.length - 1;
    const middle = history.dayAt((start + end) / 2);
    const index = this.day < 0 && end - start > kSeveralDays ? middle : middle + direction;
    return history.days[index] ? index : undefined;
  }

  // The same as set(), but seen moving, unless the reader wants no motion.
  glide(start, end) {
    this.stop();
    if (matchMedia('(prefers-reduced-motion: reduce)').matches) return this.set(start, end);
    const goal = this.#within(start, end);
    this.#goal = goal;
    const from = { start: this.start, end: this.end, time: performance.now() };
    const kDuration = 200;
    const step = (time) => {
      const share = Math.min(Math.max((time - from.time) / kDuration, 0), 1);
      const eased = 1 - (1 - share) ** 3;
      this.set(from.start + (goal.start - from.start) * eased, from.end + (goal.end - from.end) * eased);
      if (share < 1) this.#frame = requestAnimationFrame(step); else this.#goal = null;
    };
    step(from.time);
  }

  stop() {
    cancelAnimationFrame(this.#frame);
    this.#goal = null;
  }

  // A range of that length at that place, or the nearest one that the period has.
  #within(start, end) {
    const most = this.#most - this.#least;
    const length = Math.min(Math.max(end - start, kShortestView), most);
    const from = (start + end - length) / 2;
    const nearest = Math.min(Math.max(from, this.#least), this.#most - length);
    return { start: nearest, end: nearest + length };
  }

  // A single day is first shown from its first hour with a record to its last; it has the others too.
  get #least() {
    return Math.min(0, this.history.shown[0]);
  }

  get #most() {
    return Math.max(this.history.end, this.history.shown[1]);
  }

  #frame = 0;
  #goal = null;
}
