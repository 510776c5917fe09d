
// What stands around the chart: the totals, the details of a session, the tip at the pointer. Texts
// of the history become text nodes and nothing else.

const kMostTitlesShown = 60;

function element(tag, properties = {}, ...children) {
  const made = Object.assign(document.createElement(tag), properties);
  made.append(...children);
  return made;
}

function shareText(part, whole) {
  return `${whole > 0 ? Math.round(part / whole * 100) : 0}%`;
}

// Orders indices by their sums, the largest first, and equal ones by their names.
function bySize(sums, groups) {
  return (a, b) => sums[b] - sums[a] || (groups[a].name < groups[b].name ? -1 : 1);
}

// The tables of totals for what is in view.
class Totals {
  constructor(place, history, choice, drawing, onTitle) {
    Object.assign(this, { place, history, choice, drawing, onTitle });
    this.tables = { apps: this.#table('Applications'), titles: this.#table('Titles') };
    if (history.hasCategories) this.tables.categories = this.#table('Categories');
    place.addEventListener('pointerdown', () => { this.isPressed = true; });
    // A menu may keep the release to itself.
    for (const end of ['pointerup', 'pointercancel', 'contextmenu']) addEventListener(end, () => this.#release());
  }

  // The click comes after the release, and before any timer.
  #release() {
    setTimeout(() => {
      this.isPressed = false;
      if (this.isLate) this.update();
    });
  }

  #table(heading) {
    const body = element('tbody');
    this.place.append(element('section', {}, element('h2', { textContent: heading }),
      element('table', { ariaLabel: heading }, body)));
    return body;
  }

  // A button that is replaced while it is pressed would not be clicked, so that waits.
  update() {
    this.isLate = this.isPressed;
    if (this.isPressed) return;
    const { choice, history } = this;
    const { totals } = this.drawing;
    const focused = document.activeElement?.dataset?.key;
    this.#groups(this.tables.apps, 'app', history.apps, totals.apps, choice.appsOff);
    if (this.tables.categories) {
      this.#groups(this.tables.categories, 'category', history.categories, totals.categories, choice.categoriesOff);
    }
    this.#titles();
    if (focused) this.place.querySelector(`[data-key="${focused}"]`)?.focus();
  }

  #groups(body, kind, groups, sums, off) {
    const shown = [...groups.keys()].filter((i) => sums[i] > 0 || off.has(i));
    shown.sort(bySize(sums, groups));
    const rows = shown.map((i) => this.#row(sums[i], this.#switch(kind, groups, i, off), this.#colour(groups[i])));
    body.replaceChildren(...(rows.length > 0 ? rows : [this.#nothing()]));
  }

  #colour(group) {
    return group.own ?? this.drawing.colours[group.colour === null ? 'other' : `c${group.colour}`];
  }

  #switch(kind, groups, i, off) {
    const isOn = !off.has(i);
    const group = groups[i];
    const swatch = element('span', { className: 'swatch' });
    swatch.style.background = this.#colour(group);
    const button = element('button', { type: 'button', className: 'switch', title: isOn ? 'Switch off' : 'Switch on' },
      swatch, element('bdi', { textContent: group.name }));
    button.dataset.key = `${kind}${i}`;
    button.setAttribute('aria-pressed', String(isOn));
    button.onclick = (event) => this.choice.toggle(off, groups.length, i, event.shiftKey);
    return button;
  }

  #titles() {
    const { titles } = this.drawing.totals;
    const order = [...titles.keys()].filter((i) => titles[i] > 0).sort((a, b) => titles[b] - titles[a]);
    const rows = order.slice(0, kMostTitlesShown).map((i) => {
      if (i === this.history.titles.length) {
        return this.#row(titles[i], element('i', { textContent: 'Without a title' }));
      }
      const title = this.history.titles[i];
      const button = element('button', { type: 'button', className: 'switch', title: 'Show only this title' },
        element('bdi', { textContent: title }));
      button.dataset.key = `title${i}`;
      button.onclick = () => this.onTitle(title);
      return this.#row(titles[i], button);
    });
    const others = order.slice(kMostTitlesShown);
    if (others.length > 0) {
      rows.push(this.#row(others.reduce((sum, i) => sum + titles[i], 0),
        element('i', { textContent: counted(others.length, 'other') })));
    }
    this.tables.titles.replaceChildren(...(rows.length > 0 ? rows : [this.#nothing()]));
  }

  #row(time, name, colour = '') {
    const { all } = this.drawing.totals;
    const bar = element('span', { className: 'share-bar' });
    bar.style.background = colour;
    bar.style.width = `${all > 0 ? time / all * 100 : 0}%`;
    return element('tr', {},
      element('td', { className: 'name' }, name, element('span', { className: 'share-line' }, bar)),
      element('td', { className: 'number', textContent: time > 0 ? lengthText(time) : '–' }),
      element('td', { className: 'number share', textContent: time > 0 ? shareText(time, all) : '' }));
  }

  #nothing() {
    return element('tr', {}, element('td', { className: 'name' },
      element('i', { textContent: 'Nothing in view' })));
  }
}

// What one session was.
class Details {
  constructor(place, history, drawing) {
    Object.assign(this, { place, history, drawing });
    this.onMove = () => {};
  }

  // Of the session with that number; null closes it.
  show(session) {
    this.drawing.pinned = session;
    this.place.hidden = session === null;
    if (session === null) return this.place.replaceChildren();
    const { history } = this;
    const subject = history.subjects[session];
    const [start, end] = [history.starts[session], history.ends[session]];
    const isOpen = history.open.has(session);
    const swatch = element('span', { className: 'swatch' });
    swatch.style.background = this.drawing.colourOf(session);
    const title = history.titleOf[subject] < 0 ? 'Without a title' : history.titles[history.titleOf[subject]];
    const facts = [
      ['Day', history.days[history.dayAt(start)].long],
      ['Time', `${history.clock(start, true)}–${isOpen ? 'now' : history.clock(end, true)}`],
      ['Length', lengthText(end - start, true)],
    ];
    if (history.hasCategories) facts.push(['Category', history.categories[history.categoryOf[subject]].name]);
    const notes = history.notes.filter((note) => note.start < end && note.end > start).map((note) => note.text);
    if (notes.length > 0) facts.push([notes.length === 1 ? 'Note' : 'Notes', notes.join(' · ')]);
    const button = (text, label, act) => {
      const made = element('button', { type: 'button', textContent: text, title: label, onclick: act });
      made.setAttribute('aria-label', label);
      return made;
    };
    this.place.replaceChildren(
      element('header', {}, swatch, element('strong', { textContent: history.apps[history.appOf[subject]].name }),
        element('span', { className: 'set' },
          button('‹', 'Session before', () => this.onMove(-1)), button('›', 'Session after', () => this.onMove(1))),
        button('×', 'Close', () => { this.show(null); this.drawing.draw(); })),
      element('p', { className: 'title', dir: 'auto', textContent: title }),
      element('dl', {}, ...facts.map(([name, value]) => element('div', {},
        element('dt', { textContent: name }), element('dd', { dir: 'auto', textContent: value })))));
  }
}

// The text beside the pointer.
class Tip {
  constructor(place, history) {
    Object.assign(this, { place, history });
  }

  show(found, x, y) {
    this.place.hidden = !found;
    if (!found) return;
    const lines = this.#lines(found);
    this.place.replaceChildren(...lines.map((text, i) =>
      element(i === 0 ? 'strong' : 'span', { dir: 'auto', textContent: text })));
    const room = this.place.parentElement.clientWidth;
    const width = this.place.offsetWidth;
    this.place.style.left = `${Math.max(4, Math.min(x + 14, room - width - 8))}px`;
    this.place.style.top = `${y + 18}px`;
  }

  #lines({ session, note, day, name, time }) {
    const { history } = this;
    if (note) return [note.text, `${history.span(note.start, note.end, note.isOpen)}, ${lengthText(note.end - note.start, true)}`];
    if (session === undefined) return [name, history.days[day].long, time > 0 ? lengthText(time) : 'nothing'];
    const subject = history.subjects[session];
    const title = history.titleOf[subject];
    const [start, end] = [history.starts[session], history.ends[session]];
    return [history.apps[history.appOf[subject]].name, ...(title < 0 ? [] : [history.titles[title]]),
      `${history.span(start, end, history.open.has(session))}, ${lengthText(end - start, true)}`];
  }
}
