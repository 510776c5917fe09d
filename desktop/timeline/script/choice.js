
// Which sessions are shown: those that pass the filter, of applications and categories that are on.

// Letters as a filter compares them: small as capital ones, of which each letter has just one, and
// without marks.
function folded(text) {
  return text.normalize('NFKD').replace(/\p{M}/gu, '').toUpperCase();
}

// The words of a filter, "two words" in quotation marks as one.
function wordsOf(text) {
  const words = [];
  for (const [, phrase, word] of text.matchAll(/"([^"]*)"?|([^\s"]+)/g)) {
    const wanted = folded(phrase ?? word);
    if (wanted) words.push(wanted);
  }
  return words;
}

class Choice {
  constructor(history) {
    this.history = history;
    this.filter = '';
    this.appsOff = new Set();
    this.categoriesOff = new Set();
    this.groupsByCategory = false;
    this.isShown = new Uint8Array(history.appOf.length).fill(1); // of each subject
    this.onChange = () => {};
  }

  get hidesSome() {
    return this.filter.trim() !== '' || this.appsOff.size > 0 || this.categoriesOff.size > 0;
  }

  setFilter(text) {
    this.filter = text;
    this.update();
  }

  // Switches one of `off` on or off; `alone` leaves it the only one that is on, or takes that back.
  toggle(off, count, index, alone) {
    if (alone) {
      const wasAlone = off.size === count - 1 && !off.has(index);
      off.clear();
      if (!wasAlone) for (let i = 0; i < count; ++i) if (i !== index) off.add(i);
    } else if (!off.delete(index)) {
      off.add(index);
    }
    this.update();
  }

  reset() {
    this.filter = '';
    this.appsOff.clear();
    this.categoriesOff.clear();
    this.update();
  }

  groupBy(isCategory) {
    this.groupsByCategory = isCategory && this.history.hasCategories;
    this.update();
  }

  // The groups that have lines and colours of their own.
  get groups() {
    return this.groupsByCategory ? this.history.categories : this.history.apps;
  }

  get groupOf() {
    return this.groupsByCategory ? this.history.categoryOf : this.history.appOf;
  }

  update() {
    const { history } = this;
    const words = wordsOf(this.filter);
    this.#folded ??= { apps: history.apps.map((app) => folded(app.name)), titles: [] };
    const { apps, titles } = this.#folded;
    for (let i = 0; i < this.isShown.length; ++i) {
      const app = history.appOf[i];
      const title = history.titleOf[i];
      let isShown = !this.appsOff.has(app) && !this.categoriesOff.has(history.categoryOf[i]);
      if (isShown && words.length > 0) {
        if (title >= 0) titles[title] ??= folded(history.titles[title]);
        const text = `${apps[app]}\n${titles[title] ?? ''}`;
        isShown = words.every((word) => text.includes(word));
      }
      this.isShown[i] = isShown ? 1 : 0;
    }
    this.onChange();
  }

  #folded;
}

// The time that what is shown takes between two moments: all of it, and that of each group.
function totalsOf(choice, start, end) {
  const { history, isShown } = choice;
  const bySubject = new Float64Array(isShown.length);
  let sessions = 0;
  const [first, last] = history.between(start, end);
  for (let i = first; i < last; ++i) {
    const subject = history.subjects[i];
    if (!isShown[subject]) continue;
    const from = Math.max(history.starts[i], start);
    const to = Math.min(history.ends[i], end);
    if (from >= end || (to <= start && history.starts[i] < start)) continue;
    bySubject[subject] += to - from;
    ++sessions;
  }
  const totals = {
    sessions,
    all: 0,
    apps: new Float64Array(history.apps.length),
    categories: new Float64Array(history.categories.length),
    titles: new Float64Array(history.titles.length + 1), // the last one is that without a title
  };
  for (let i = 0; i < bySubject.length; ++i) {
    const time = bySubject[i];
    if (time === 0) continue;
    totals.all += time;
    totals.apps[history.appOf[i]] += time;
    totals.categories[history.categoryOf[i]] += time;
    totals.titles[history.titleOf[i] < 0 ? history.titles.length : history.titleOf[i]] += time;
  }
  return totals;
}
