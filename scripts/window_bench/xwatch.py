"""When a program's window has been painted, as the X server sees it."""
import ctypes
import select
import struct
import time

STRUCTURE_NOTIFY = 1 << 17  # windows answer a window manager's questions by these
SUBSTRUCTURE_NOTIFY = 1 << 19
CREATE_NOTIFY = 16
DAMAGE_RAW_RECTANGLES = 0
EVENT_SIZE = 24 * 8  # of an XEvent, on machines with pointers of eight bytes

ERROR_HANDLER = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)


class WindowWatch:
    """Sees the top-level windows of a display without a window manager, and what paints them."""

    def __init__(self, display):
        self.x = ctypes.CDLL("libX11.so.6")
        self.damage = ctypes.CDLL("libXdamage.so.1")
        self.x.XOpenDisplay.restype = ctypes.c_void_p
        self.x.XDefaultRootWindow.restype = ctypes.c_ulong
        self.ignore = ERROR_HANDLER(lambda display, error: 0)  # of windows that are gone again
        self.x.XSetErrorHandler(self.ignore)
        self.display = ctypes.c_void_p(self.x.XOpenDisplay(display.encode()))
        if not self.display:
            raise RuntimeError(f"no X display {display}")
        first, error = ctypes.c_int(), ctypes.c_int()
        if not self.damage.XDamageQueryExtension(self.display, ctypes.byref(first),
                                                 ctypes.byref(error)):
            raise RuntimeError("the X server tells of no damage")
        self.damageNotify = first.value
        root = self.x.XDefaultRootWindow(self.display)
        self.x.XSelectInput(self.display, ctypes.c_ulong(root),
                            ctypes.c_long(STRUCTURE_NOTIFY | SUBSTRUCTURE_NOTIFY))
        self.x.XSync(self.display, 0)

    def events(self, until):
        """(time, type, bytes) of each event up to that time."""
        buffer = ctypes.create_string_buffer(EVENT_SIZE)
        connection = self.x.XConnectionNumber(self.display)
        while True:
            while self.x.XPending(self.display) == 0:
                left = until - time.monotonic()
                if left <= 0 or not select.select([connection], [], [], left)[0]:
                    return
            self.x.XNextEvent(self.display, buffer)
            yield time.monotonic(), struct.unpack_from("i", buffer)[0], buffer

    def forget(self):
        """Drops what has been told so far."""
        self.x.XSync(self.display, 1)

    def firstFrame(self, patience=20):
        """(time, window): when most of a top-level window had been painted; None in vain."""
        painted = {}
        for now, kind, event in self.events(time.monotonic() + patience):
            if kind == CREATE_NOTIFY:
                window, = struct.unpack_from("L", event, 40)
                width, height, _, isOverride = struct.unpack_from("iiii", event, 56)
                if not isOverride and width * height > 5000:
                    painted[window] = 0
                    self.damage.XDamageCreate(self.display, ctypes.c_ulong(window),
                                              DAMAGE_RAW_RECTANGLES)
                    self.x.XFlush(self.display)
            elif kind == self.damageNotify:
                window, = struct.unpack_from("L", event, 32)
                painted[window] = painted.get(window, 0) + self.sharePainted(kind, event)
                if painted[window] > 0.5:
                    return now, window
        return None

    def sharePainted(self, kind, event):
        """How much of its window an event tells to have been painted: 0 to 1."""
        if kind != self.damageNotify:
            return 0
        width, height = struct.unpack_from("HH", event, 68)
        wholeWidth, wholeHeight = struct.unpack_from("HH", event, 76)
        return width * height / (wholeWidth * wholeHeight)

    def geometry(self, window):
        """x, y, width and height of a top-level window."""
        root, border, depth = ctypes.c_ulong(), ctypes.c_uint(), ctypes.c_uint()
        x, y, width, height = (ctypes.c_int() for _ in range(4))
        self.x.XGetGeometry(self.display, ctypes.c_ulong(window), ctypes.byref(root),
                            ctypes.byref(x), ctypes.byref(y), ctypes.byref(width),
                            ctypes.byref(height), ctypes.byref(border), ctypes.byref(depth))
        return x.value, y.value, width.value, height.value

    def minimise(self, window):
        """Needs a window manager."""
        self.x.XIconifyWindow(self.display, ctypes.c_ulong(window), 0)
        self.x.XFlush(self.display)
