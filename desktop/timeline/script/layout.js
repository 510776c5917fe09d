
// Where things are on the chart, and how sessions share its pixels.

const kMostRows = 12;

class Layout {
  constructor(width, history, view, rowCount) {
    this.view = view;
    this.width = width;
    this.isNarrow = width < 640;
    // A narrow chart has the names above its lines, and room at the left for the hours of strips only.
    this.left = !this.isNarrow ? 168 : view.isSeveralDays ? 40 : 0;
    this.right = width - (this.isNarrow ? 0 : 122);
    this.axis = { top: 0, height: 40 };
    this.lanes = { top: 44, height: 24, pitch: 28, count: history.laneCount };
    const top = this.lanes.top + this.lanes.count * this.lanes.pitch + (this.lanes.count > 0 ? 8 : 0);
    const several = this.isNarrow ? 180 : 240;
    this.all = { top, height: view.isSeveralDays ? several : 48 };
    this.rows = {
      top: top + this.all.height + 12,
      pitch: this.isNarrow ? 42 : 30,
      barTop: this.isNarrow ? 20 : 6,
      barHeight: 18,
      count: rowCount,
    };
    this.bottom = this.rows.top + rowCount * this.rows.pitch;
    this.height = this.bottom + 4;
    this.longestDay = Math.max(...history.days.map((day) => day.end - day.start));
  }

  x(time) {
    return this.left + (time - this.view.start) / this.view.length * (this.right - this.left);
  }

  time(x) {
    return this.view.start + (x - this.left) / (this.right - this.left) * this.view.length;
  }

  // How long a pixel is.
  get pixel() {
    return this.view.length / (this.right - this.left);
  }

  // The left edge and the width of a day's strip.
  strip(day) {
    const [left, right] = [this.x(day.start), this.x(day.end)];
    const gap = right - left < 3 ? 0 : Math.min(8, (right - left) * 0.16);
    return { left: left + gap / 2, width: right - left - gap };
  }

  // The height in a strip of a moment of its day.
  y(day, time) {
    return this.all.top + (time - day.start) / this.longestDay * this.all.height;
  }

  timeAt(day, y) {
    return day.start + (y - this.all.top) / this.all.height * this.longestDay;
  }
}

// Joins neighbours that are less than a pixel long, the longer standing for both, and gives the rest
// to `draw(start, end, session)`. They come in the order of their starts.
class Joiner {
  constructor(draw) {
    this.draw = draw;
    this.settled = null;
    this.pending = null; // too short to stand alone
  }

  add(start, end, session) {
    let span = { start, end, session, longest: end - start };
    if (this.pending && start - this.pending.end < 1) {
      span = united(this.pending, span);
    } else {
      this.#settle();
    }
    this.pending = span;
    if (span.end - span.start >= 1) this.#settle();
  }

  finish() {
    this.#settle();
    if (this.settled) this.draw(this.settled.start, this.settled.end, this.settled.session);
    this.settled = null;
  }

  #settle() {
    const span = this.pending;
    this.pending = null;
    if (!span) return;
    const last = this.settled;
    const isShort = span.end - span.start < 1;
    if (last && isShort && span.start - last.end < 1) {
      this.settled = united(last, span);
      return;
    }
    if (last) this.draw(last.start, last.end, last.session);
    this.settled = span;
  }
}

function united(first, second) {
  const longer = second.longest > first.longest ? second : first;
  return {
    start: Math.min(first.start, second.start),
    end: Math.max(first.end, second.end),
    session: longer.session,
    longest: longer.longest,
  };
}

// The ink that is easier to read on a colour written as #rrggbb.
function inkOn(colour) {
  const [r, g, b] = [1, 3, 5].map((i) => (parseInt(colour.slice(i, i + 2), 16) / 255) ** 2.2);
  return 0.2126 * r + 0.7152 * g + 0.0722 * b > 0.18 ? '#10151c' : '#ffffff';
}

// `text` cut to `width` pixels with an ellipsis; empty where there is no room for a letter of it.
function fitted(context, text, width) {
  if (context.measureText(text).width <= width) return text;
  const letters = Array.from(text.slice(0, 200));
  let low = 0;
  let high = letters.length;
  while (low < high) {
    const middle = (low + high + 1) >> 1;
    const part = `${letters.slice(0, middle).join('').trimEnd()}…`;
    if (context.measureText(part).width <= width) low = middle; else high = middle - 1;
  }
  return low === 0 ? '' : `${letters.slice(0, low).join('').trimEnd()}…`;
}
