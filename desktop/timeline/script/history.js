'use strict';

// The history of the page: its sessions as columns of numbers, which a year of them needs, and its
// moments as text. A moment is a number of milliseconds from the beginning of the first day.

const kSecond = 1000;
const kMinute = 60 * kSecond;
const kHour = 60 * kMinute;
const kDay = 24 * kHour;

const kWeekdays = ['Mon', 'Tue', 'Wed', 'Thu', 'Fri', 'Sat', 'Sun'];
const kMonths = ['January', 'February', 'March', 'April', 'May', 'June', 'July', 'August', 'September',
  'October', 'November', 'December'];

class History {
  constructor(data) {
    this.apps = data.apps.map(([name, colour]) => ({ name, colour }));
    this.categories = data.categories.map(([name, colour, own]) => ({ name, colour, own }));
    this.titles = data.titles;
    this.days = data.days.map(([date, start]) => new Day(date, start));
    this.days.forEach((day, i) => { day.end = (data.days[i + 1] ?? [0, data.end])[1]; });
    this.end = data.end;
    this.now = data.now; // null where it is not in the period
    this.shown = data.shown ?? [0, data.end];
    this.start = data.start * kSecond;
    this.offsets = data.offsets.map(([from, seconds]) => ({ from, ahead: seconds * kSecond }));
    this.notes = inLanes(data.notes.map(([start, end, text, isOpen]) =>
      ({ start, end, text, isOpen: isOpen === true })));
    this.laneCount = Math.max(0, ...this.notes.map((note) => note.lane + 1));
    this.#readSubjects(data.subjects);
    this.#readSessions(data.sessions, new Set(data.open));
  }

  #readSubjects(numbers) {
    const count = numbers.length / 3;
    this.appOf = new Int32Array(count);
    this.titleOf = new Int32Array(count); // -1 without a title
    this.categoryOf = new Int32Array(count); // the last one is that of what no rule takes
    for (let i = 0; i < count; ++i) {
      this.appOf[i] = numbers[3 * i];
      this.titleOf[i] = numbers[3 * i + 1];
      const category = numbers[3 * i + 2];
      this.categoryOf[i] = category < 0 ? this.categories.length : category;
    }
    this.hasCategories = this.categories.length > 0;
    this.categories.push({ name: 'Uncategorised', colour: null });
  }

  #readSessions(numbers, open) {
    const count = numbers.length / 3;
    this.count = count;
    this.open = open;
    this.starts = new Float64Array(count);
    this.ends = new Float64Array(count);
    this.subjects = new Int32Array(count);
    this.latestEnds = new Float64Array(count); // of each session and those before it
    let last = 0;
    let latest = -Infinity;
    for (let i = 0; i < count; ++i) {
      this.starts[i] = last + numbers[3 * i];
      last = this.starts[i] + numbers[3 * i + 1];
      this.ends[i] = last;
      this.subjects[i] = numbers[3 * i + 2];
      latest = Math.max(latest, last);
      this.latestEnds[i] = latest;
    }
  }

  // The range of sessions that may overlap the time from `start` to `end`.
  between(start, end) {
    return [firstAbove(this.latestEnds, start), firstAbove(this.starts, end)];
  }

  dayAt(time) {
    return Math.max(0, this.days.findLastIndex((day) => day.start <= time));
  }

  aheadAt(time) {
    return (this.offsets.findLast((offset) => offset.from <= time) ?? this.offsets[0]).ahead;
  }

  // What the wall shows at `time`, as a date whose UTC is meant.
  wall(time) {
    return new Date(this.start + time + this.aheadAt(time));
  }

  clock(time, hasSeconds = false) {
    return this.wall(time).toISOString().slice(11, hasSeconds ? 19 : 16);
  }

  // The moments from `start` to `end` at which the wall shows a multiple of `step`.
  wallTicks(start, end, step) {
    const ticks = [];
    this.offsets.forEach(({ from, ahead }, i) => {
      const until = Math.min(end, (this.offsets[i + 1]?.from ?? Infinity) - 1);
      const zero = this.start + ahead;
      const first = Math.max(start, i === 0 ? -Infinity : from);
      for (let time = Math.ceil((zero + first) / step) * step - zero; time <= until; time += step) {
        ticks.push(time);
      }
    });
    return ticks;
  }

  // "09:15–10:00" on the only day of the period, otherwise with the days.
  span(start, end, isOpen = false) {
    const first = this.days[this.dayAt(start)];
    const last = this.days[this.dayAt(Math.max(start, end - 1))];
    const to = isOpen ? 'now' : this.clock(end);
    if (first === last) return `${this.days.length > 1 ? `${first.short} ` : ''}${this.clock(start)}–${to}`;
    return `${first.short} ${this.clock(start)} – ${isOpen ? '' : `${last.short} `}${to}`;
  }
}

// "Tue 4 Mar" of a date whose UTC is meant.
function shortDate(date) {
  return `${kWeekdays[(date.getUTCDay() + 6) % 7]} ${date.getUTCDate()} ${kMonths[date.getUTCMonth()].slice(0, 3)}`;
}

function twoDigits(number) {
  return String(number).padStart(2, '0');
}

class Day {
  constructor(text, start) {
    const date = new Date(`${text}T00:00:00Z`);
    const [year, month, day] = text.split('-').map(Number);
    const weekday = (date.getUTCDay() + 6) % 7;
    Object.assign(this, { start, year, month, day, weekday });
    this.monthName = kMonths[month - 1];
    this.short = shortDate(date);
    this.long = `${kWeekdays[weekday]}, ${day} ${this.monthName} ${year}`;
  }
}

// Gives each note a lane in which it overlaps no other.
function inLanes(notes) {
  const ends = [];
  for (const note of notes) {
    let lane = ends.findIndex((end) => end <= note.start);
    if (lane < 0) lane = ends.length;
    ends[lane] = note.end;
    note.lane = lane;
  }
  return notes;
}

// The index of the first of the rising `numbers` that is above `limit`.
function firstAbove(numbers, limit) {
  let low = 0;
  let high = numbers.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (numbers[middle] > limit) high = middle; else low = middle + 1;
  }
  return low;
}

// 42s, 5m, 2h 5m; with seconds 5m 3s too.
function lengthText(milliseconds, hasSeconds = false) {
  const seconds = Math.floor(milliseconds / kSecond + 1e-6);
  const [h, m, s] = [Math.floor(seconds / 3600), Math.floor(seconds / 60) % 60, seconds % 60];
  if (h > 0) return `${h}h ${m}m`;
  if (m > 0) return hasSeconds ? `${m}m ${s}s` : `${m}m`;
  return `${s}s`;
}

function counted(count, one, many = `${one}s`) {
  return `${count.toLocaleString('en')} ${count === 1 ? one : many}`;
}
