"""What a user and a window manager do to a window: keys, a drop of files, asking if it answers."""
import ctypes
import itertools
import pathlib
import struct

from window_bench.xwatch import EVENT_SIZE

CLIENT_MESSAGE = 33
SELECTION_REQUEST = 30
SELECTION_NOTIFY = 31
DROP_VERSION = 5


class Hands:
    """Uses the connection of a WindowWatch; what comes back is among its events."""

    def __init__(self, watch):
        self.x = watch.x
        self.display = watch.display
        self.test = ctypes.CDLL("libXtst.so.6")
        self.x.XInternAtom.restype = ctypes.c_ulong
        self.x.XStringToKeysym.restype = ctypes.c_ulong
        self.x.XCreateSimpleWindow.restype = ctypes.c_ulong
        self.root = self.x.XDefaultRootWindow(self.display)
        self.numbers = itertools.count(1)
        self.hand = 0  # the window that a drop comes from
        self.dragged = b""

    def atom(self, name):
        return self.x.XInternAtom(self.display, name.encode(), 0)

    def tell(self, window, kind, *words):
        """Sends a client message."""
        event = ctypes.create_string_buffer(EVENT_SIZE)
        struct.pack_into("i", event, 0, CLIENT_MESSAGE)
        struct.pack_into("LLi", event, 32, window, self.atom(kind), 32)
        struct.pack_into("5l", event, 56, *words, *[0] * (5 - len(words)))
        self.x.XSendEvent(self.display, ctypes.c_ulong(window), 0, ctypes.c_long(0), event)
        self.x.XFlush(self.display)

    # --- Asking ------------------------------------------------------------------------------------

    def ask(self, window):
        """As a window manager asks whether a window still reacts; returns the question's number."""
        number = next(self.numbers)
        self.tell(window, "WM_PROTOCOLS", self.atom("_NET_WM_PING"), number, window)
        return number

    @staticmethod
    def answered(kind, event):
        """The number of the question that this event answers."""
        return struct.unpack_from("l", event, 64)[0] if kind == CLIENT_MESSAGE else None

    # --- Keys --------------------------------------------------------------------------------------

    def focus(self, window):
        self.x.XSetInputFocus(self.display, ctypes.c_ulong(window), 2, ctypes.c_ulong(0))
        self.x.XSync(self.display, 0)

    def press(self, *keys):
        """Presses keys by their names, modifiers first, and lets go of them again."""
        codes = [self.x.XKeysymToKeycode(
            self.display, ctypes.c_ulong(self.x.XStringToKeysym(key.encode()))) for key in keys]
        for code, isDown in [(code, 1) for code in codes] + [(code, 0) for code in reversed(codes)]:
            self.test.XTestFakeKeyEvent(self.display, code, isDown, ctypes.c_ulong(0))
        self.x.XFlush(self.display)

    # --- Dropping ----------------------------------------------------------------------------------

    def dragOver(self, window, path, x, y):
        """Comes to that point of the screen, above the window, with a file or folder."""
        self.hand = self.x.XCreateSimpleWindow(self.display, ctypes.c_ulong(self.root), -10, -10,
                                               1, 1, 0, ctypes.c_ulong(0), ctypes.c_ulong(0))
        self.dragged = pathlib.Path(path).as_uri().encode() + b"\r\n"
        self.x.XSetSelectionOwner(self.display, ctypes.c_ulong(self.atom("XdndSelection")),
                                  ctypes.c_ulong(self.hand), ctypes.c_ulong(0))
        self.tell(window, "XdndEnter", self.hand, DROP_VERSION << 24, self.atom("text/uri-list"))
        self.tell(window, "XdndPosition", self.hand, 0, x << 16 | y, 0,
                  self.atom("XdndActionCopy"))

    def drop(self, window):
        self.tell(window, "XdndDrop", self.hand)

    def handOver(self, kind, event):
        """Gives what is dragged to the window that asks for it with this event."""
        if kind != SELECTION_REQUEST:
            return
        requestor, selection, target, place, time = struct.unpack_from("5L", event, 40)
        self.x.XChangeProperty(self.display, ctypes.c_ulong(requestor), ctypes.c_ulong(place),
                               ctypes.c_ulong(target), 8, 0, self.dragged, len(self.dragged))
        answer = ctypes.create_string_buffer(EVENT_SIZE)
        struct.pack_into("i", answer, 0, SELECTION_NOTIFY)
        struct.pack_into("5L", answer, 32, requestor, selection, target, place, time)
        self.x.XSendEvent(self.display, ctypes.c_ulong(requestor), 0, ctypes.c_long(0), answer)
        self.x.XFlush(self.display)
