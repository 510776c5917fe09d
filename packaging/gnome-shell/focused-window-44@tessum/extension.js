// Tells on the session bus which window has the focus. It asks nobody and changes nothing.
//
// Each answer and signal is the whole state: the id of the sandbox or GTK application, the instance
// and the class of the window as X11 has them, its title, and its process. All are empty while no
// window has the focus. This is the form for GNOME 43 and 44; focused-window@tessum is the same for
// later versions.

/* exported init */

const {Gio, GLib} = imports.gi;
const Main = imports.ui.main;

const NAME = 'com.tessum.FocusedWindow';
const PATH = '/com/tessum/FocusedWindow';
const INTERFACE = `
<node>
  <interface name="com.tessum.FocusedWindow">
    <method name="Get">
      <arg name="window" type="(ssssu)" direction="out"/>
    </method>
    <signal name="Changed">
      <arg name="window" type="(ssssu)"/>
    </signal>
  </interface>
</node>`;

const PROPERTIES = ['title', 'wm-class', 'gtk-application-id'];
const OVERVIEW_SIGNALS = ['showing', 'shown', 'hiding', 'hidden'];

class FocusedWindow {
  enable() {
    this._object = Gio.DBusExportedObject.wrapJSObject(INTERFACE, this);
    this._object.export(Gio.DBus.session, PATH);
    this._display = global.display.connect('notify::focus-window', () => this._follow());
    this._overview = OVERVIEW_SIGNALS.map(signal =>
      Main.overview.connect(signal, () => this._follow()));
    this._follow();
    this._name = Gio.DBus.session.own_name(NAME, Gio.BusNameOwnerFlags.NONE, null, null);
  }

  // The shell calls this also when the screen is locked: then nobody has the name.
  disable() {
    Gio.DBus.session.unown_name(this._name);
    global.display.disconnect(this._display);
    for (const handler of this._overview)
      Main.overview.disconnect(handler);
    this._leave();
    this._object.unexport();
    this._object = null;
    this._state = null;
  }

  Get() {
    return this._state;
  }

  // The overview takes the input from the window that has the focus and keeps it.
  _follow() {
    this._leave();
    this._window = Main.overview.visibleTarget ? null : global.display.focus_window;
    this._handlers = this._window === null ? [] : PROPERTIES.map(property =>
      this._window.connect(`notify::${property}`, () => this._tell()));
    this._tell();
  }

  _leave() {
    for (const handler of this._handlers ?? [])
      this._window.disconnect(handler);
    this._handlers = [];
    this._window = null;
  }

  _tell() {
    const state = describe(this._window);
    if (JSON.stringify(state) === JSON.stringify(this._state))
      return;
    this._state = state;
    this._object.emit_signal('Changed', new GLib.Variant('((ssssu))', [state]));
  }
}

function describe(window) {
  if (window === null)
    return ['', '', '', '', 0];
  return [
    window.get_sandboxed_app_id() || window.get_gtk_application_id() || '',
    window.get_wm_class_instance() || '',
    window.get_wm_class() || '',
    window.get_title() || '',
    Math.max(window.get_pid(), 0),
  ];
}

function init() {
  return new FocusedWindow();
}
