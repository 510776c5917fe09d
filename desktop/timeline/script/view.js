
// The stretch of time that is in view.

const kShortestView = 30 * kSecond;

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
    return this.length > 2.1 * kDay;
  }

  // Shows the time from `start` to `end`, as far as the period goes.
  set(start, end) {
    const most = this.#most - this.#least;
    const length = Math.min(Math.max(end - start, kShortestView), most);
    const middle = (start + end) / 2;
    const from = Math.min(Math.max(middle - length / 2, this.#least), this.#most - length);
    if (from === this.start && from + length === this.end) return false;
    this.start = from;
    this.end = from + length;
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

  // The day that fills the view; -1 when none does.
  get day() {
    return this.history.days.findIndex((day) =>
      Math.abs(day.start - this.start) < kSecond && Math.abs(day.end - this.end) < kSecond);
  }

  // The day to go to from here; absent at the ends of the period.
  neighbour(direction) {
    const { history } = this;
    if (this.isWhole && history.days.length > 1) return direction > 0 ? 0 : history.days.length - 1;
    const middle = history.dayAt((this.start + this.end) / 2);
    const index = this.day < 0 && this.isSeveralDays ? middle : middle + direction;
    return history.days[index] ? index : undefined;
  }

  // The same as set(), but seen moving, unless the reader wants no motion.
  glide(start, end) {
    cancelAnimationFrame(this.#frame);
    if (matchMedia('(prefers-reduced-motion: reduce)').matches) return this.set(start, end);
    const from = { start: this.start, end: this.end, time: performance.now() };
    const kDuration = 200;
    const step = (time) => {
      const share = Math.min(Math.max((time - from.time) / kDuration, 0), 1);
      const eased = 1 - (1 - share) ** 3;
      this.set(from.start + (start - from.start) * eased, from.end + (end - from.end) * eased);
      if (share < 1) this.#frame = requestAnimationFrame(step);
    };
    step(from.time);
  }

  stop() {
    cancelAnimationFrame(this.#frame);
  }

  // A single day is first shown from its first hour with a record to its last; it has the others too.
  get #least() {
    return Math.min(0, this.history.shown[0]);
  }

  get #most() {
    return Math.max(this.history.end, this.history.shown[1]);
  }

  #frame = 0;
}
