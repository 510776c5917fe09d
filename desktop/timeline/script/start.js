
// Puts the parts together.

class Explorer {
  constructor(history) {
    const find = (id) => document.getElementById(id);
    this.history = history;
    this.parts = Object.fromEntries(['chart', 'tip', 'details', 'totals', 'shown', 'sum', 'filter', 'reset', 'previous',
      'next', 'whole', 'byApp', 'byCategory', 'grouping', 'zoomIn', 'zoomOut', 'help', 'keys', 'closeKeys']
      .map((id) => [id, find(id)]));
    const { parts } = this;
    this.choice = new Choice(history);
    this.view = new View(history);
    this.drawing = new Drawing(parts.chart, history, this.choice, this.view);
    this.details = new Details(parts.details, history, this.drawing);
    this.tip = new Tip(parts.tip, history);
    this.totals = new Totals(parts.totals, history, this.choice, this.drawing, (title) => this.#filter(title.includes('"') ? title.replaceAll('"', ' ') : `"${title}"`));
    this.#listen();
    this.#update();
    this.totals.update();
  }

  get isShowingKeys() {
    return this.parts.keys.open;
  }

  zoom(factor) {
    const { start, end } = this.view.goal;
    const middle = (start + end) / 2;
    const half = (end - start) * factor / 2;
    this.view.glide(middle - half, middle + half);
  }

  // Moves the view by a share of its length.
  move(share) {
    const { start, end } = this.view.goal;
    this.view.glide(start + share * (end - start), end + share * (end - start));
  }

  goToDay(direction) {
    const day = this.view.neighbour(direction);
    if (day !== undefined) this.view.showDay(day);
  }

  group(isCategory) {
    this.choice.groupBy(isCategory);
  }

  focusFilter() {
    this.parts.filter.focus();
    this.parts.filter.select();
  }

  escape() {
    if (this.drawing.pinned !== null) {
      this.details.show(null);
    } else if (this.choice.hidesSome) {
      this.#filter('');
      this.choice.reset();
    }
    this.parts.filter.blur(); // so that the other keys work again
    this.#schedule();
  }

  showKeys() {
    const { keys } = this.parts;
    keys.querySelector('dl').replaceChildren(...kKeys.filter(({ keys: [key] }) => key !== 'c' || this.history.hasCategories)
      .map(({ shown, text }) => element('div', {}, element('dt', {}, element('kbd', { textContent: shown })),
        element('dd', { textContent: text }))));
    keys.showModal();
  }

  // Pins the next session that is shown, and moves the view to it.
  moveSession(direction) {
    const { history, choice, view } = this;
    const isShown = (i) => choice.isShown[history.subjects[i]];
    let i = this.drawing.pinned;
    if (i === null) {
      const [first, last] = history.between(view.start, view.end);
      i = direction > 0 ? first - 1 : last;
    }
    for (i += direction; i >= 0 && i < history.count && !isShown(i);) i += direction;
    if (i < 0 || i >= history.count) return;
    this.details.show(i);
    const [start, end] = [history.starts[i], history.ends[i]];
    if (start < view.start || end > view.end) {
      const middle = (start + end) / 2;
      view.glide(middle - view.length / 2, middle + view.length / 2);
    }
    this.#schedule();
  }

  #listen() {
    const { parts, view, choice } = this;
    view.onChange = () => this.#schedule();
    choice.onChange = () => { this.drawing.updateGroups(); this.#schedule(); };
    this.details.onMove = (direction) => this.moveSession(direction);
    new ChartInput(parts.chart, view, this.drawing, {
      hover: (point) => this.#hover(point),
      click: (point) => this.#click(point),
      open: (point) => this.#open(point),
    });
    listenToKeys(this);
    parts.filter.oninput = () => choice.setFilter(parts.filter.value);
    parts.reset.onclick = () => { this.#filter(''); choice.reset(); };
    parts.previous.onclick = () => this.goToDay(-1);
    parts.next.onclick = () => this.goToDay(1);
    parts.whole.onclick = () => view.showWhole();
    parts.zoomIn.onclick = () => this.zoom(1 / kZoomStep);
    parts.zoomOut.onclick = () => this.zoom(kZoomStep);
    parts.byApp.onclick = () => this.group(false);
    parts.byCategory.onclick = () => this.group(true);
    parts.grouping.hidden = !this.history.hasCategories;
    parts.previous.hidden = parts.next.hidden = this.history.days.length === 1;
    parts.help.onclick = () => this.showKeys();
    parts.closeKeys.onclick = () => parts.keys.close();
    new ResizeObserver(() => this.#schedule()).observe(parts.chart.parentElement);
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => {
      this.drawing.readColours();
      this.drawing.updateGroups();
      this.details.show(this.drawing.pinned);
      this.#schedule();
    });
  }

  #filter(text) {
    this.parts.filter.value = text;
    this.choice.setFilter(text);
  }

  #hover(point) {
    const found = point && this.drawing.at(point.x, point.y);
    const before = this.drawing.hovered;
    this.drawing.hovered = found;
    const { chart } = this.parts;
    this.tip.show(found, (point?.x ?? 0) + chart.offsetLeft, (point?.y ?? 0) + chart.offsetTop);
    if (before?.session !== found?.session || before?.note !== found?.note) this.#schedule(false);
  }

  #click(point) {
    const found = this.drawing.at(point.x, point.y);
    if (found?.day !== undefined && found.session === undefined) return this.view.showDay(found.day);
    this.details.show(found?.session ?? null);
    this.#schedule(false);
  }

  #open(point) {
    if (!this.view.isSeveralDays) return;
    this.view.showDay(this.history.dayAt(this.drawing.layout.time(point.x)));
  }

  // Draws before the next frame, and adds up the totals once the view has come to rest.
  #schedule(changesTotals = true) {
    this.hasNewTotals ||= changesTotals;
    if (this.isScheduled) return;
    this.isScheduled = true;
    requestAnimationFrame(() => {
      this.isScheduled = false;
      this.#update();
      if (!this.hasNewTotals) return;
      clearTimeout(this.timer);
      this.timer = setTimeout(() => { this.hasNewTotals = false; this.totals.update(); }, 60);
    });
  }

  #update() {
    const { parts, view, history, choice, drawing } = this;
    drawing.draw();
    const day = view.day;
    const isAll = view.isWhole && history.days.length > 1;
    const first = history.days[history.dayAt(view.start)];
    const last = history.days[history.dayAt(view.end - 1)];
    const years = first.year === last.year ? ['', ''] : [` ${first.year}`, ` ${last.year}`];
    const days = first === last ? first.short : `${first.short}${years[0]} – ${last.short}${years[1]}`;
    parts.shown.value = isAll || day >= 0 ? days : history.span(view.start, view.end);
    parts.sum.value = `${lengthText(drawing.totals.all)} in ${counted(drawing.totals.sessions, 'session')}` +
      (choice.hidesSome ? ' · filtered' : '');
    parts.reset.hidden = !choice.hidesSome;
    parts.chart.setAttribute('aria-label', `Timeline, ${parts.sum.value}`);
    for (const [part, direction] of [[parts.previous, -1], [parts.next, 1]]) {
      part.disabled = view.neighbour(direction) === undefined;
    }
    parts.byApp.setAttribute('aria-pressed', String(!choice.groupsByCategory));
    parts.byCategory.setAttribute('aria-pressed', String(choice.groupsByCategory));
  }
}

// The picture without the script is not even laid out.
document.documentElement.classList.add('live');
addEventListener('DOMContentLoaded', () => {
  const data = document.getElementById('history');
  new Explorer(new History(JSON.parse(data.textContent)));
});
