
// Draws the chart.

const kFont = 'system-ui, "Segoe UI", "Helvetica Neue", "Noto Sans", "DejaVu Sans", sans-serif';

class Drawing {
  constructor(canvas, history, choice, view) {
    Object.assign(this, { canvas, history, choice, view });
    this.context = canvas.getContext('2d');
    this.hovered = null;
    this.pinned = null;
    this.readColours();
    this.updateGroups();
  }

  readColours() {
    const style = getComputedStyle(document.documentElement);
    this.colours = new Proxy({}, {
      get: (known, name) => (known[name] ??= style.getPropertyValue(`--${name}`).trim()),
    });
  }

  // To be called when other sessions are shown: finds the groups that have lines.
  updateGroups() {
    const { choice, history } = this;
    const totals = totalsOf(choice, history.days[0].start, history.end);
    const sums = choice.groupsByCategory ? totals.categories : totals.apps;
    const order = [...sums.keys()].filter((i) => sums[i] > 0).sort(bySize(sums, choice.groups));
    this.rows = order.slice(0, kMostRows).map((group) => ({ name: choice.groups[group].name, groups: [group] }));
    const others = order.slice(kMostRows - 1);
    if (others.length > 1) this.rows[kMostRows - 1] = { name: counted(others.length, 'other'), groups: others };
    this.rowOf = new Int32Array(choice.groups.length).fill(-1);
    this.rows.forEach((row, i) => row.groups.forEach((group) => { this.rowOf[group] = i; }));
    this.groupColours = choice.groups.map((group) =>
      group.own ?? this.colours[group.colour === null ? 'other' : `c${group.colour}`]);
    this.dayTotals = null;
  }

  colourOf(session) {
    return this.groupColours[this.choice.groupOf[this.history.subjects[session]]];
  }

  // The time of each row on each day.
  #totalsOfDays() {
    if (this.dayTotals) return this.dayTotals;
    const { history, choice } = this;
    const { days } = history;
    const totals = this.rows.map(() => new Float64Array(days.length));
    let day = 0;
    for (let i = 0; i < history.count; ++i) {
      const subject = history.subjects[i];
      if (!choice.isShown[subject]) continue;
      while (day + 1 < days.length && days[day + 1].start <= history.starts[i]) ++day;
      for (let d = day; d < days.length && days[d].start < history.ends[i]; ++d) {
        const time = Math.min(history.ends[i], days[d].end) - Math.max(history.starts[i], days[d].start);
        totals[this.rowOf[choice.groupOf[subject]]][d] += Math.max(time, 0);
      }
    }
    this.dayTotals = { totals, most: Math.max(1, ...totals.map((row) => row.reduce((a, b) => Math.max(a, b), 0))) };
    return this.dayTotals;
  }

  draw() {
    const { canvas, context, view, history } = this;
    this.layout = new Layout(canvas.clientWidth, history, view, this.rows.length);
    const { layout } = this;
    const scale = devicePixelRatio || 1;
    canvas.style.height = `${layout.height}px`;
    canvas.width = Math.round(layout.width * scale);
    canvas.height = Math.round(layout.height * scale);
    context.setTransform(scale, 0, 0, scale, 0, 0);
    context.textBaseline = 'middle';
    this.totals = totalsOf(this.choice, view.start, view.end);
    drawAxis(this);
    this.#clipped(() => this.#drawNotes());
    this.#drawAll();
    this.rows.forEach((row, i) => this.#drawRow(row, i));
    this.#drawNow();
  }

  #clipped(draw) {
    const { context, layout } = this;
    context.save();
    context.beginPath();
    context.rect(layout.left, 0, layout.right - layout.left, layout.height);
    context.clip();
    draw();
    context.restore();
  }

  text(text, x, y, { colour = 'ink', size = 13, weight = 400, align = 'left' } = {}) {
    const { context } = this;
    context.font = `${weight} ${size}px ${kFont}`;
    context.textAlign = align;
    context.fillStyle = this.colours[colour];
    context.fillText(text, x, y);
  }

  #drawNotes() {
    const { context, history, layout } = this;
    const { lanes } = layout;
    for (const note of history.notes) {
      const [left, right] = [Math.max(layout.x(note.start), layout.left - 12), Math.min(layout.x(note.end), layout.right + 12)];
      if (right < layout.left || left > layout.right) continue;
      const top = lanes.top + note.lane * lanes.pitch;
      const width = Math.max(right - left - 1, 1.5);
      context.beginPath();
      context.roundRect(left + 0.5, top + 0.5, width, lanes.height - 1, Math.min(6, width / 2));
      context.fillStyle = this.colours[width < 8 ? 'note-edge' : 'note'];
      context.globalAlpha = width < 8 ? 0.5 : 1;
      context.fill();
      context.globalAlpha = 1;
      context.strokeStyle = this.colours[this.hovered?.note === note ? 'ink' : 'note-edge'];
      context.lineWidth = 1;
      if (width >= 8) context.stroke();
      const from = Math.max(left, layout.left) + 8;
      const room = Math.min(right, layout.right) - 7 - from;
      if (room < 14) continue;
      context.font = `550 12px ${kFont}`;
      this.text(fitted(context, note.text, room), from, top + lanes.height / 2 + 0.5,
        { colour: 'note-ink', size: 12, weight: 550 });
    }
  }

  #lane(top, height) {
    const { context, layout } = this;
    context.fillStyle = this.colours.lane;
    context.beginPath();
    context.roundRect(layout.left, top, layout.right - layout.left, height, 4);
    context.fill();
  }

  #drawAll() {
    const { layout } = this;
    const { all } = layout;
    if (!layout.isNarrow) {
      if (layout.lanes.count > 0) this.text('Notes', 0, layout.lanes.top + 12, { colour: 'faint' });
      this.text(this.choice.groupsByCategory ? 'All categories' : 'All applications', 0,
        this.view.isSeveralDays ? all.top + 8 : all.top + all.height / 2, { colour: 'faint' });
      this.#totalText(this.totals.all, null, this.view.isSeveralDays ? all.top + 8 : all.top + all.height / 2);
    }
    if (this.view.isSeveralDays) return this.#clipped(() => this.#drawStrips());
    this.#lane(all.top, all.height);
    this.#clipped(() => this.#drawSpans(all.top, all.height, () => true, true));
  }

  // A strip for each day, its hours from the top down.
  #drawStrips() {
    const { choice, context, history, layout, view } = this;
    for (const day of history.days) {
      if (day.end <= view.start || day.start >= view.end) continue;
      const { left, width } = layout.strip(day);
      context.fillStyle = this.colours.lane;
      context.fillRect(left, layout.all.top, width, layout.y(day, day.end) - layout.all.top);
      const joiner = new Joiner((start, end, session) => {
        context.fillStyle = this.colourOf(session);
        context.fillRect(left, start, width, Math.max(end - start, 0.8));
        if (this.#isMarked(session)) this.#mark(left, start, width, end - start);
      });
      const [first, last] = history.between(day.start, day.end);
      for (let i = first; i < last; ++i) {
        if (!choice.isShown[history.subjects[i]] || history.ends[i] <= day.start) continue;
        const start = Math.max(history.starts[i], day.start);
        const end = Math.min(history.ends[i], day.end);
        if (start < day.end) joiner.add(layout.y(day, start), layout.y(day, end), i);
      }
      joiner.finish();
    }
  }

  // The sessions in view whose group is meant.
  #drawSpans(top, height, isMeant, hasTitles = false) {
    const { choice, context, history, layout, view } = this;
    const joiner = new Joiner((start, end, session) => {
      const width = Math.max(end - start, 0.8);
      const seam = width > 5 ? 1 : 0; // between sessions of one application
      context.fillStyle = this.colourOf(session);
      context.fillRect(start, top, width - seam, height);
      if (hasTitles) this.#drawTitle(session, start, end, top + height / 2);
      if (this.#isMarked(session)) this.#mark(start, top, width, height);
    });
    const [first, last] = history.between(view.start, view.end);
    for (let i = first; i < last; ++i) {
      const subject = history.subjects[i];
      if (!choice.isShown[subject] || !isMeant(choice.groupOf[subject])) continue;
      if (history.ends[i] < view.start) continue;
      joiner.add(Math.max(layout.x(history.starts[i]), -10), Math.min(layout.x(history.ends[i]), layout.width + 10), i);
    }
    joiner.finish();
  }

  // What the session was, where there is room for some words of it.
  #drawTitle(session, start, end, y) {
    const { context, history, layout } = this;
    const left = Math.max(start, layout.left) + 8;
    const room = Math.min(end, layout.right) - 8 - left;
    if (room < 60) return;
    const subject = history.subjects[session];
    const title = history.titles[history.titleOf[subject]] ?? history.apps[history.appOf[subject]].name;
    context.font = `500 12px ${kFont}`;
    context.textAlign = 'left';
    context.fillStyle = inkOn(this.colourOf(session));
    context.fillText(fitted(context, title, room), left, y);
  }

  #isMarked(session) {
    return session === this.pinned || session === this.hovered?.session;
  }

  #mark(left, top, width, height) {
    const { context } = this;
    context.strokeStyle = this.colours.ink;
    context.lineWidth = 2;
    context.strokeRect(left - 1, top, Math.max(width, 1) + 2, Math.max(height, 1)); // around a narrow one
  }

  #totalText(time, share, y) {
    const { layout } = this;
    const x = layout.width - 38;
    this.text(lengthText(time), x, y, { weight: 600, align: 'right' });
    if (share !== null) {
      this.text(`${Math.round(share * 100)}%`, layout.width, y, { colour: 'faint', size: 12, align: 'right' });
    }
  }

  #drawRow(row, index) {
    const { choice, context, layout, totals } = this;
    const top = layout.rows.top + index * layout.rows.pitch;
    const barTop = top + layout.rows.barTop;
    const sums = choice.groupsByCategory ? totals.categories : totals.apps;
    const time = row.groups.reduce((sum, group) => sum + sums[group], 0);
    const y = layout.isNarrow ? top + 10 : top + layout.rows.pitch / 2;
    context.fillStyle = row.groups.length > 1 ? this.colours.other : this.groupColours[row.groups[0]];
    context.beginPath();
    context.roundRect(0, y - 5, 10, 10, 3);
    context.fill();
    context.font = `400 13px ${kFont}`;
    const room = layout.isNarrow ? layout.width - 140 : layout.left - 34;
    this.text(fitted(context, row.name, room), 18, y, { colour: time > 0 ? 'ink' : 'faint' });
    if (time > 0) this.#totalText(time, time / totals.all, y);
    this.#lane(barTop, layout.rows.barHeight);
    this.#clipped(() => {
      if (this.view.isSeveralDays) return this.#drawColumns(index, barTop);
      this.#drawSpans(barTop, layout.rows.barHeight, (group) => this.rowOf[group] === index);
    });
  }

  // How long the row's applications were in front on each day.
  #drawColumns(index, top) {
    const { context, history, layout, view } = this;
    const { totals, most } = this.#totalsOfDays();
    const row = this.rows[index];
    context.fillStyle = row.groups.length > 1 ? this.colours.other : this.groupColours[row.groups[0]];
    history.days.forEach((day, i) => {
      if (totals[index][i] === 0 || day.end <= view.start || day.start >= view.end) return;
      const { left, width } = layout.strip(day);
      const height = Math.max(totals[index][i] / most * layout.rows.barHeight, 1);
      context.fillRect(left, top + layout.rows.barHeight - height, width, height);
    });
  }

  #drawNow() {
    const { context, history, layout, view } = this;
    if (history.now === null || history.now < view.start || history.now > view.end) return;
    context.fillStyle = this.colours.now;
    context.fillRect(Math.round(layout.x(history.now)) - 0.5, layout.axis.height - 6, 1.5, layout.bottom - layout.axis.height + 6);
  }

  // What is at a point of the chart: a note, a session, or a row's day; null for nothing.
  at(x, y) {
    const { choice, history, layout, view } = this;
    if (!layout || x < layout.left || x > layout.right) return null;
    const time = layout.time(x);
    const lane = Math.floor((y - layout.lanes.top) / layout.lanes.pitch);
    if (lane >= 0 && lane < layout.lanes.count) {
      const slack = 2 * layout.pixel;
      const note = history.notes.find((one) => one.lane === lane && one.start - slack <= time && time <= one.end + slack);
      return note ? { note } : null;
    }
    if (y >= layout.all.top && y < layout.all.top + layout.all.height) {
      if (!view.isSeveralDays) return this.#sessionAt(time, layout.pixel, () => true);
      const day = history.days[history.dayAt(time)];
      return this.#sessionAt(layout.timeAt(day, y), layout.longestDay / layout.all.height, () => true);
    }
    const row = Math.floor((y - layout.rows.top) / layout.rows.pitch);
    if (row < 0 || row >= this.rows.length) return null;
    if (!view.isSeveralDays) return this.#sessionAt(time, layout.pixel, (group) => this.rowOf[group] === row);
    const day = history.dayAt(time);
    return { day, name: this.rows[row].name, time: this.#totalsOfDays().totals[row][day] };
  }

  // The longest session less than a pixel from `time`.
  #sessionAt(time, pixel, isMeant) {
    const { choice, history } = this;
    const [first, last] = history.between(time - pixel / 2, time + pixel / 2);
    let best = -1;
    for (let i = first; i < last; ++i) {
      const subject = history.subjects[i];
      if (history.ends[i] < time - pixel / 2 || !choice.isShown[subject] || !isMeant(choice.groupOf[subject])) continue;
      const isLonger = best < 0 || history.ends[i] - history.starts[i] > history.ends[best] - history.starts[best];
      if (isLonger) best = i;
    }
    return best < 0 ? null : { session: best };
  }
}
