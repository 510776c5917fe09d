
// Draws the days or hours above the chart, and their lines through it.

function drawAxis(drawing) {
  if (drawing.view.isSeveralDays) drawDays(drawing); else drawHours(drawing);
}

function rule({ colours, context, layout }, x) {
  context.fillStyle = colours.line;
  context.fillRect(Math.round(x), layout.axis.height - 6, 1, layout.bottom - layout.axis.height + 6);
}

const kTickRoom = 54; // pixels from one label to the next

function drawHours(drawing) {
  const { history, layout, view } = drawing;
  const steps = [10 * kSecond, 30 * kSecond, ...[1, 2, 5, 10, 15, 30].map((n) => n * kMinute),
    ...[1, 2, 3, 6, 12, 24].map((n) => n * kHour)];
  const step = steps.find((length) => length / layout.pixel >= kTickRoom) ?? kDay;
  let free = -Infinity; // where the next label may begin
  for (const time of history.wallTicks(view.start, view.end, step)) {
    const x = layout.x(time);
    rule(drawing, x);
    const wall = history.wall(time);
    const isMidnight = wall.getTime() % kDay === 0;
    const text = isMidnight ? shortDate(wall) : history.clock(time, step < kMinute);
    const half = text.length * 3.6;
    const at = Math.min(Math.max(x, half), layout.width - half);
    if (at - half < free) continue;
    drawing.text(text, at, 24, {
      colour: isMidnight ? 'ink' : 'faint', size: 12, align: 'center', weight: isMidnight ? 600 : 400,
    });
    free = at + half + 6;
  }
}

function drawDays(drawing) {
  const { history, layout, view } = drawing;
  const days = history.days.filter((day) => day.end > view.start && day.start < view.end);
  drawMonths(drawing, days);
  const pitch = kDay / layout.pixel;
  for (const day of days) {
    if (pitch < 22 && (pitch < 9 || day.weekday !== 0)) continue; // of narrow strips only Mondays
    const { left, width } = layout.strip(day);
    const middle = left + width / 2;
    if (middle < layout.left || middle > layout.right) continue;
    const name = pitch >= kTickRoom ? `${kWeekdays[day.weekday]} ${day.day}` : `${day.day}`;
    drawing.text(name, middle, 28, { colour: 'faint', size: 12, align: 'center' });
  }
  drawHoursOfStrips(drawing);
}

// The name of each month where it begins, that of the first one at the edge.
function drawMonths(drawing, days) {
  const { layout } = drawing;
  const pitch = kDay / layout.pixel;
  let free = -Infinity;
  days.forEach((day, i) => {
    if (day.day !== 1 && i > 0) return;
    const x = Math.max(layout.strip(day).left, layout.left);
    if (i > 0 && pitch < 22) rule(drawing, x);
    const isYear = i === 0 || day.month === 1;
    const text = `${day.monthName.slice(0, 3)}${isYear && pitch * 31 > 70 ? ` ${day.year}` : ''}`;
    const width = text.length * 7 + 8;
    const next = days.findIndex((other, j) => j > i && other.day === 1);
    if (x < free || (next > 0 && i === 0 && layout.strip(days[next]).left < x + width)) return;
    if (x + width > layout.width) return;
    drawing.text(text, x, pitch >= 9 ? 10 : 26, { size: 12, weight: 600 });
    free = x + width;
  });
}

// Those of a day on which the wall is not set.
function drawHoursOfStrips(drawing) {
  const { colours, context, history, layout } = drawing;
  const [day] = history.days;
  const { all, left, right, isNarrow } = layout;
  const first = history.wall(day.start).getUTCHours();
  for (let hour = 0; hour * kHour <= layout.longestDay; hour += 6) {
    const y = layout.y(day, day.start + hour * kHour);
    context.fillStyle = colours.line;
    context.fillRect(left, Math.round(y), right - left, 1);
    const at = Math.min(Math.max(y, all.top + 6), all.top + all.height - 6);
    drawing.text(`${twoDigits((first + hour) % 24)}:00`, left - (isNarrow ? 5 : 8), at,
      { colour: 'faint', size: isNarrow ? 11 : 12, align: 'right' });
  }
}
