
// The wheel, the pointers and the keys.

const kZoomStep = 1.6;
const kClickDistance = 5; // pixels that a click may move

class ChartInput {
  constructor(canvas, view, drawing, handlers) {
    Object.assign(this, { canvas, view, drawing, handlers });
    this.pointers = new Map();
    canvas.addEventListener('wheel', (event) => this.#wheel(event), { passive: false });
    canvas.addEventListener('pointerdown', (event) => this.#down(event));
    canvas.addEventListener('pointermove', (event) => this.#move(event));
    canvas.addEventListener('pointerup', (event) => this.#up(event));
    canvas.addEventListener('pointercancel', (event) => this.#forget(event));
    canvas.addEventListener('pointerleave', () => handlers.hover(null));
    canvas.addEventListener('dblclick', (event) => handlers.open(this.#point(event)));
  }

  #point(event) {
    const box = this.canvas.getBoundingClientRect();
    return { x: event.clientX - box.left, y: event.clientY - box.top };
  }

  #wheel(event) {
    this.view.stop();
    const { layout } = this.drawing;
    const unit = event.deltaMode === 1 ? 16 : event.deltaMode === 2 ? 400 : 1;
    const isSideways = Math.abs(event.deltaX) > Math.abs(event.deltaY) || event.shiftKey;
    const delta = (isSideways ? event.deltaX || event.deltaY : event.deltaY) * unit;
    const hasMoved = isSideways
      ? this.view.pan(delta * layout.pixel)
      : this.view.zoom(Math.exp(Math.max(-300, Math.min(300, delta)) * 0.0022), layout.time(this.#point(event).x));
    // What the view cannot do, the page may: it scrolls.
    if (hasMoved || isSideways || delta < 0) event.preventDefault();
  }

  #down(event) {
    if (event.button !== 0) return;
    this.view.stop();
    this.canvas.setPointerCapture(event.pointerId);
    this.pointers.set(event.pointerId, this.#point(event));
    this.hasDragged = this.pointers.size > 1;
    this.origin = this.#point(event);
  }

  #move(event) {
    const point = this.#point(event);
    const before = this.pointers.get(event.pointerId);
    if (!before) return this.handlers.hover(event.pointerType === 'touch' ? null : point);
    if (!this.hasDragged && Math.hypot(point.x - this.origin.x, point.y - this.origin.y) < kClickDistance) return;
    this.hasDragged = true;
    this.handlers.hover(null);
    const { layout } = this.drawing;
    if (this.pointers.size === 1) {
      this.view.pan((before.x - point.x) * layout.pixel);
    } else {
      this.#pinch(event.pointerId, before, point);
    }
    this.pointers.set(event.pointerId, point);
    this.canvas.classList.add('dragged');
  }

  // Keeps the times under two fingers where they are.
  #pinch(id, before, point) {
    const [, other] = [...this.pointers].find(([key]) => key !== id);
    const { layout, view } = this.drawing;
    const fixed = layout.time(other.x);
    const factor = Math.max(Math.abs(before.x - other.x), 20) / Math.max(Math.abs(point.x - other.x), 20);
    view.zoom(factor, fixed);
  }

  #up(event) {
    const isClick = this.pointers.has(event.pointerId) && !this.hasDragged;
    this.#forget(event);
    if (isClick) this.handlers.click(this.#point(event));
  }

  #forget(event) {
    this.pointers.delete(event.pointerId);
    if (this.pointers.size === 0) this.canvas.classList.remove('dragged');
  }
}

// The keys, and what the list of them says; each acts on the explorer.
const kKeys = [
  { keys: ['ArrowLeft', 'ArrowRight'], shown: '← →', text: 'Move', act: (explorer, key) => explorer.move(key === 'ArrowLeft' ? -0.2 : 0.2) },
  { keys: ['+', '='], shown: '+', text: 'Zoom in', act: (explorer) => explorer.zoom(1 / kZoomStep) },
  { keys: ['-', '_'], shown: '−', text: 'Zoom out', act: (explorer) => explorer.zoom(kZoomStep) },
  { keys: ['0'], shown: '0', text: 'Whole period', act: (explorer) => explorer.view.showWhole() },
  { keys: ['['], shown: '[', text: 'Previous day', act: (explorer) => explorer.goToDay(-1) },
  { keys: [']'], shown: ']', text: 'Next day', act: (explorer) => explorer.goToDay(1) },
  { keys: [',', '.'], shown: ', .', text: 'Session before, after', act: (explorer, key) => explorer.moveSession(key === ',' ? -1 : 1) },
  { keys: ['c'], shown: 'c', text: 'Applications or categories', act: (explorer) => explorer.group(!explorer.choice.groupsByCategory) },
  { keys: ['/'], shown: '/', text: 'Filter', act: (explorer) => explorer.focusFilter() },
  { keys: ['Escape'], shown: 'Esc', text: 'Close, then show everything', act: (explorer) => explorer.escape() },
  { keys: ['?'], shown: '?', text: 'These keys', act: (explorer) => explorer.showKeys() },
];

function listenToKeys(explorer) {
  document.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey || explorer.isShowingKeys) return;
    const isTyping = event.target.matches?.('input') && event.key !== 'Escape';
    const found = kKeys.find(({ keys }) => keys.includes(event.key));
    if (isTyping || !found) return;
    event.preventDefault();
    found.act(explorer, event.key);
  });
}
