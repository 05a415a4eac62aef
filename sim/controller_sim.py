#!/usr/bin/python3
"""Robot controller simulator: the controller's FTP and HTTP file services on 127.0.0.1.

Serves a folder tree of controller devices (MC:, UD1:, MCV:, UT1:, TD:, MD:, MDB:, FR:) the way
the controller does:

  FTP   device paths as the controller takes them (RETR MC:\\A\\B.PNG, cwd MC:\\A), LIST in the
        controller's nine-field long form, NLST, NLST at "\\" answering the device names, STOR.
  HTTP  GET /MC/A/B.PNG serves MC:\\A\\B.PNG; a missing file answers an error page whose first
        line holds "<HTML>" (status 200, as the controller's web server does).

Control endpoints on the HTTP port (for tests and demos):

  GET /__sim/ping                      "ok"
  GET /__sim/fault?name=value[&...]    switch faults on (see FAULTS), answers the fault table
  GET /__sim/reset                     all faults off
  GET /__sim/snap[?w=&h=&color=&format=&path=]
                                       the camera takes a new synthetic image and writes it to a
                                       controller path (default MC:\\CAMERA\\SNAP.JPG); answers the path.
                                       Where the flange was drawn goes beside it as SNAP.JSON
  GET /__sim/mask[?path=&w=&h=]        writes a mask with nothing masked (black) to a controller path
                                       (default MC:\\CAMERA\\DONTCARE.PNG; JPEG for a .JPG path)
  GET /__sim/result[?path=]            that result of the last snap to path (404 before the first)
  GET /__sim/log                       the protocol log so far;  GET /__sim/log/clear empties it
  GET /__sim/restart?down=SECONDS      the controller goes down (every connection dropped,
                                       nothing listening) and comes back on the same ports

Every command and reply is written to the protocol log (passwords masked), one line each:
"FTP> RETR MC:\\A\\B.PNG", "FTP< 226 Transfer complete.", "HTTP> GET /MC/A/B.PNG", "HTTP< 200".

When both services listen, one line goes to standard output:
    NXRSIM READY ftp=<port> http=<port> root=<folder> log=<file>
"""

import argparse
import email.utils
import io
import logging
import os
import random
import re
import shutil
import signal
import socket
import sys
import tempfile
import threading
import time
import urllib.parse
import zlib
import struct
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

from pyftpdlib.authorizers import AuthenticationFailed, DummyAuthorizer
from pyftpdlib.filesystems import AbstractedFS
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.servers import FTPServer

DEVICES = ["MC", "UD1", "MCV", "UT1", "TD", "MD", "MDB", "FR"]

# Fault switches and their "off" values.
FAULTS = {
    "refuse_login": 0,   # 1: every FTP login is refused (530)
    "reply421": 0,       # N: the next N FTP commands are answered 421 and the connection closed
    "drop_after": -1,    # N: file transfers (FTP RETR, HTTP GET) are cut after N bytes
    "stall_after": -1,   # N: HTTP GET sends N bytes and then nothing; FTP RETR/LIST/NLST get no reply
    "html_error": 0,     # 1: HTTP answers the error page even for present files
    "lowercase_list": 0, # 1: LIST lines come in lower case
    "http_down": 0,      # 1: HTTP file requests are answered 503 with no page
    "rate": 0,           # N: HTTP GET sends at most N bytes per second (a slow link)
}

CONTROLLER_PATH = re.compile(r"^([A-Za-z][A-Za-z0-9]*):(.*)$")
BAD_PATH_CHARS = set('*?"<>|')


class State:
    def __init__(self, root, log_path):
        self.root = root
        self.lock = threading.Lock()
        self.faults = dict(FAULTS)
        self.log_path = log_path
        self.log_file = open(log_path, "a", buffering=1, encoding="utf-8", newline="\n")
        self.snap_counter = 0
        self.results = {}  # local image file -> its result text

    def log(self, line):
        with self.lock:
            self.log_file.write(line.replace("\r", "\\r").replace("\n", "\\n") + "\n")

    def fault(self, name):
        with self.lock:
            return self.faults[name]

    def take_421(self):
        with self.lock:
            if self.faults["reply421"] > 0:
                self.faults["reply421"] -= 1
                return True
            return False


STATE = None


def mask_command(line):
    if line[:4].upper() == "PASS":
        return "PASS ******"
    return line


def resolve_ci(root, parts):
    """Maps path pieces onto the folder tree case-insensitively (the controller ignores case)."""
    current = root
    for part in parts:
        if part in ("", "."):
            continue
        if part == "..":
            raise ValueError("path leaves the device tree")
        candidate = os.path.join(current, part)
        if not os.path.exists(candidate) and os.path.isdir(current):
            lower = part.lower()
            for entry in os.listdir(current):
                if entry.lower() == lower:
                    candidate = os.path.join(current, entry)
                    break
        current = candidate
    return current


def controller_to_virtual(path, cwd="/"):
    """MC:\\A\\B.PNG -> /MC/A/B.PNG; "\\" -> "/"; relative names join the current folder."""
    path = path.strip()
    m = CONTROLLER_PATH.match(path)
    if m:
        rest = m.group(2).replace("\\", "/").strip("/")
        virtual = "/" + m.group(1).upper() + ("/" + rest if rest else "")
    else:
        p = path.replace("\\", "/")
        virtual = p if p.startswith("/") else cwd.rstrip("/") + "/" + p
    parts = []
    for piece in virtual.split("/"):
        if piece in ("", "."):
            continue
        if piece == "..":
            if parts:
                parts.pop()
            continue
        parts.append(piece)
    return "/" + "/".join(parts)


class ControllerFS(AbstractedFS):
    def ftpnorm(self, ftppath):
        return controller_to_virtual(ftppath, self.cwd)

    def ftp2fs(self, ftppath):
        virtual = self.ftpnorm(ftppath)
        try:
            return os.path.normpath(resolve_ci(self.root, virtual.split("/")))
        except ValueError:
            return self.root

    def format_list(self, basedir, listing, ignore_err=True):
        lower = STATE.fault("lowercase_list")
        for name in listing:
            full = os.path.join(basedir, name)
            try:
                st = os.stat(full)
            except OSError:
                if ignore_err:
                    continue
                raise
            isdir = os.path.isdir(full)
            perms = "drwxrwxrwx" if isdir else "-rw-rw-rw-"
            stamp = time.strftime("%b %d %H:%M", time.localtime(st.st_mtime))
            line = "%s   1 root     root     %10d %s %s\r\n" % (perms, 0 if isdir else st.st_size, stamp, name)
            if lower:
                line = line.lower()
            yield line.encode("utf8")


class ControllerAuthorizer(DummyAuthorizer):
    def validate_authentication(self, username, password, handler):
        if STATE.fault("refuse_login"):
            raise AuthenticationFailed("Login refused.")
        return super().validate_authentication(username, password, handler)


class ControllerFTPHandler(FTPHandler):
    abstracted_fs = ControllerFS
    banner = "Controller FTP server ready."
    _drop_on_complete = False
    auth_failed_timeout = 0.1

    def pre_process_command(self, line, cmd, arg):
        STATE.log("FTP> " + mask_command(line))
        if STATE.take_421():
            self.respond("421 Service not available, closing control connection.")
            self.close_when_done()
            return
        if cmd in ("RETR", "LIST", "NLST") and STATE.fault("stall_after") >= 0:
            STATE.log("FTP: stalling on " + cmd)
            return
        if cmd in ("CWD", "XCWD", "RETR", "STOR", "LIST", "NLST") and any(c in BAD_PATH_CHARS for c in arg):
            self.respond("501 Syntax error in parameters or arguments.")
            return
        return super().pre_process_command(line, cmd, arg)

    def respond(self, resp, logfun=None):
        STATE.log("FTP< " + resp)
        if self._drop_on_complete and resp.startswith("226"):
            self._drop_on_complete = False
            STATE.log("FTP: dropping the connection")
            self.close()
            return
        return super().respond(resp) if logfun is None else super().respond(resp, logfun)

    def ftp_NLST(self, path):
        if os.path.normpath(path) == os.path.normpath(self.fs.root):
            names = sorted(d for d in os.listdir(self.fs.root) if os.path.isdir(os.path.join(self.fs.root, d)))
            data = "".join(n + ":\r\n" for n in names)
            self.push_dtp_data(data.encode("utf8"), cmd="NLST")
            return path
        return super().ftp_NLST(path)

    def ftp_RETR(self, file):
        limit = STATE.fault("drop_after")
        if limit < 0:
            return super().ftp_RETR(file)
        try:
            with open(file, "rb") as fh:
                data = fh.read(limit)
        except OSError as err:
            self.respond("550 %s." % err.strerror)
            return
        self._drop_on_complete = True
        self.push_dtp_data(data, cmd="RETR")
        return file

    def ftp_STOR(self, file, mode="w"):
        folder = os.path.dirname(file)
        if not os.path.isdir(folder):
            self.respond("550 No such folder.")
            return
        return super().ftp_STOR(file, mode)


def error_page(path):
    return ("<HTML>\r\n<HEAD><TITLE>Controller error</TITLE></HEAD>\r\n"
            "<BODY><H1>File not found</H1><P>%s</P></BODY>\r\n</HTML>\r\n" % path).encode("latin-1", "replace")


CONTENT_TYPES = {".png": "image/png", ".jpg": "image/jpeg", ".gif": "image/gif", ".bmp": "image/bmp",
                 ".txt": "text/plain", ".htm": "text/html", ".html": "text/html", ".json": "application/json"}


class ControllerHTTPHandler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    server_version = "ControllerWeb/1.0"

    def log_message(self, fmt, *args):
        pass

    def setup(self):
        super().setup()
        # Headers and body leave at once. With Nagle's algorithm the last part of a small file
        # waited for the client's delayed acknowledgement of the headers: 40 ms for every file.
        self.connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)

    def _send(self, status, body, ctype="text/plain"):
        STATE.log("HTTP< %d" % status)
        self.send_response(status)
        self.send_header("Content-Type", ctype)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(body)

    def do_HEAD(self):
        self.do_GET()

    def do_GET(self):
        STATE.log("HTTP> %s %s" % (self.command, self.path))
        url = urllib.parse.urlsplit(self.path)
        path = urllib.parse.unquote(url.path)
        if path.startswith("/__sim/"):
            return self.control(path[len("/__sim/"):], urllib.parse.parse_qs(url.query))
        if path == "/":
            return self._send(200, b"<html><body>controller</body></html>\r\n", "text/html")
        if STATE.fault("http_down"):
            return self._send(503, b"")
        try:
            local = resolve_ci(STATE.root, path.split("/"))
        except ValueError:
            local = None
        if local is None or not os.path.isfile(local) or STATE.fault("html_error"):
            return self._send(200, error_page(path), "text/html")
        self.serve_file(local)

    def serve_file(self, local):
        size = os.path.getsize(local)
        drop = STATE.fault("drop_after")
        stall = STATE.fault("stall_after")
        STATE.log("HTTP< 200")
        self.send_response(200)
        self.send_header("Content-Type", CONTENT_TYPES.get(os.path.splitext(local)[1].lower(), "application/octet-stream"))
        self.send_header("Content-Length", str(size))
        self.send_header("Last-Modified", email.utils.formatdate(os.path.getmtime(local), usegmt=True))
        self.end_headers()
        if self.command == "HEAD":
            return
        self.wfile.flush()
        rate = STATE.fault("rate")
        with open(local, "rb") as fh:
            if rate > 0 and drop < 0 and stall < 0:
                step = max(1, rate // 20)
                while True:
                    block = fh.read(step)
                    if not block:
                        return
                    self.wfile.write(block)
                    self.wfile.flush()
                    time.sleep(0.05)
            if drop < 0 and stall < 0:
                self.connection.sendfile(fh)
                return
            cut = drop if drop >= 0 else stall
            self.wfile.write(fh.read(cut))
            self.wfile.flush()
        if drop >= 0:
            STATE.log("HTTP: dropping the connection")
            self.close_connection = True
            self.connection.shutdown(socket.SHUT_RDWR)
            return
        STATE.log("HTTP: stalling")
        deadline = time.time() + 120
        while STATE.fault("stall_after") >= 0 and time.time() < deadline:
            time.sleep(0.05)
        self.close_connection = True

    def control(self, what, query):
        if what == "ping":
            return self._send(200, b"ok\n")
        if what == "reset":
            with STATE.lock:
                STATE.faults = dict(FAULTS)
            return self._send(200, b"ok\n")
        if what == "fault":
            with STATE.lock:
                for name, values in query.items():
                    if name not in FAULTS:
                        return self._send(400, ("unknown fault %s\n" % name).encode())
                    STATE.faults[name] = int(values[-1])
                table = "".join("%s=%s\n" % kv for kv in sorted(STATE.faults.items()))
            return self._send(200, table.encode())
        if what == "log":
            with STATE.lock:
                STATE.log_file.flush()
                with open(STATE.log_path, "rb") as fh:
                    body = fh.read()
            return self._send(200, body)
        if what == "log/clear":
            with STATE.lock:
                STATE.log_file.truncate(0)
                STATE.log_file.seek(0)
            return self._send(200, b"ok\n")
        if what == "snap":
            arg = lambda k, d: query.get(k, [d])[-1]
            try:
                path = snap(arg("path", "MC:\\CAMERA\\SNAP.JPG"), int(arg("w", 640)), int(arg("h", 480)),
                            arg("color", "1") not in ("0", "false", "False"), arg("format", ""))
            except ValueError as err:
                return self._send(400, (str(err) + "\n").encode())
            return self._send(200, (path + "\n").encode())
        if what == "mask":
            arg = lambda k, d: query.get(k, [d])[-1]
            try:
                path = blank_mask(arg("path", "MC:\\CAMERA\\DONTCARE.PNG"), int(arg("w", 640)), int(arg("h", 480)))
            except ValueError as err:
                return self._send(400, (str(err) + "\n").encode())
            return self._send(200, (path + "\n").encode())
        if what == "result":
            image = query.get("path", ["MC:\\CAMERA\\SNAP.JPG"])[-1]
            try:
                local = controller_local_path(image)
            except ValueError as err:
                return self._send(400, (str(err) + "\n").encode())
            with STATE.lock:
                body = STATE.results.get(local)
            if body is None:
                return self._send(404, b'{"found": false}\n', "application/json")
            return self._send(200, body.encode(), "application/json")
        if what == "restart":
            down = float(query.get("down", ["1"])[-1])
            self._send(200, b"restarting\n")
            self.wfile.flush()
            threading.Thread(target=restart, args=(down,), daemon=True).start()
            return
        return self._send(404, b"unknown control\n")


# ---------------------------------------------------------------- images

def write_png(path, width, height, color, pixel):
    """Writes a PNG without any imaging library (used when PIL is missing)."""
    channels = 3 if color else 1
    rows = bytearray()
    for y in range(height):
        rows.append(0)
        for x in range(width):
            v = pixel(x, y)
            rows.extend(v[:channels])
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)
    header = struct.pack(">IIBBBBB", width, height, 8, 2 if color else 0, 0, 0, 0)
    with open(path, "wb") as fh:
        fh.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(bytes(rows), 6))
                 + chunk(b"IEND", b""))


class CameraScene:
    """A machine-vision camera looking down on a conveyor: a machined flange (central bore with a
    keyway, six bolt holes on a pitch circle) lies on a lightly textured belt, lit from the left with
    a soft shadow to the right and a little sensor noise. The part moves along the belt and turns
    from frame to frame; a frame counter sits in the top left corner.

    Everything that does not change between frames (belt, part sprite, shadow, noise fields) is
    built once per size and colour mode, so a frame costs a copy, two small pastes, one noise add
    and the encoder."""

    NOISE_FIELDS = 3

    def __init__(self, width, height, color):
        from PIL import Image, ImageChops, ImageDraw, ImageFilter
        self.width, self.height, self.color = width, height, color
        self.mode = "RGB" if color else "L"
        rng = random.Random(width * 7919 + height)
        s = height / 480.0

        # Belt: mid grey with a fine grain, a few lengthwise scuffs, side rails top and bottom and
        # light falling off from the left.
        grain = Image.effect_noise((max(8, width // 3), max(8, height // 3)), 14).resize(
            (width, height), Image.BICUBIC)
        belt = Image.new("L", (width, height), 0)
        belt = ImageChops.add(belt, grain, 1, -128 + 104)
        draw = ImageDraw.Draw(belt)
        for _ in range(40):
            y = rng.randrange(height)
            x = rng.randrange(width)
            draw.line((x, y, x + rng.randrange(width // 8, width // 2), y),
                      fill=rng.choice((92, 96, 112, 116)), width=max(1, int(s)))
        rail = int(38 * s)
        draw.rectangle((0, 0, width, rail), fill=150)
        draw.rectangle((0, height - rail, width, height), fill=150)
        draw.line((0, rail, width, rail), fill=60, width=max(2, int(3 * s)))
        draw.line((0, height - rail, width, height - rail), fill=190, width=max(1, int(2 * s)))
        for x in range(int(20 * s), width, int(120 * s)):  # rail bolts
            for y in (rail // 2, height - rail // 2):
                r = max(2, int(5 * s))
                draw.ellipse((x - r, y - r, x + r, y + r), fill=110)
        belt = belt.filter(ImageFilter.GaussianBlur(max(0.6, 0.7 * s)))
        light = Image.linear_gradient("L").rotate(-90).resize((width, height))  # 255 left, 0 right
        light = light.point(lambda v: 150 + v * 105 // 255)
        belt = ImageChops.multiply(belt, light.point(lambda v: v))  # darker to the right
        belt = belt.point(lambda v: min(255, v * 2))
        if color:
            belt = Image.merge("RGB", (belt.point(lambda v: v * 88 // 100),
                                       belt.point(lambda v: v * 96 // 100), belt))
        self.background = belt

        # The flange, drawn at twice its size and scaled down for smooth edges.
        self.diameter = d = int(190 * s) | 1
        big = 2 * d
        c = big / 2.0
        shape = Image.new("L", (big, big), 0)
        face = Image.new("L", (big, big), 0)
        sd, fd = ImageDraw.Draw(shape), ImageDraw.Draw(face)

        def ring(dr, r, fill):
            dr.ellipse((c - r, c - r, c + r, c + r), fill=fill)

        ring(sd, c - 1, 255)
        ring(fd, c - 1, 150)           # outer chamfer
        ring(fd, c * 0.95, 200)        # turned face
        for k in range(0, 14):         # faint turning marks
            ring(fd, c * (0.9 - k * 0.03), 196 + (k % 2) * 8)
        ring(fd, c * 0.50, 170)        # step up to the hub
        ring(fd, c * 0.47, 225)        # hub face
        ring(fd, c * 0.30, 120)        # bore chamfer
        bore = c * 0.26
        ring(sd, bore, 0)
        ring(fd, bore, 0)
        key = bore * 0.28
        for dr in (sd, fd):
            dr.rectangle((c - key, c - bore - key * 1.4, c + key, c), fill=0)
            ring(dr, bore, 0)
        pitch, hole = c * 0.72, c * 0.085
        import math
        for k in range(6):
            a = math.radians(k * 60 + 30)
            hx, hy = c + pitch * math.cos(a), c + pitch * math.sin(a)
            fd.ellipse((hx - hole * 1.35, hy - hole * 1.35, hx + hole * 1.35, hy + hole * 1.35), fill=140)
            for dr in (sd, fd):
                dr.ellipse((hx - hole, hy - hole, hx + hole, hy + hole), fill=0)
        # Only the face is kept and turned per frame; its outline (every face tone is well above
        # zero, holes and surroundings are zero) gives the paste mask.
        shape = shape.resize((d, d), Image.LANCZOS)
        self.face = face.resize((d, d), Image.LANCZOS)
        # The shadow is soft, so a quarter-size copy turned and scaled up per frame will do.
        margin = int(d * 0.15)
        padded = Image.new("L", (d + 2 * margin, d + 2 * margin), 0)
        padded.paste(shape, (margin, margin))
        self.shadow = padded.filter(ImageFilter.GaussianBlur(max(2, 6 * s))).point(lambda v: v * 150 // 255)
        self.shadow_small = self.shadow.resize((padded.width // 4, padded.height // 4), Image.BOX)
        self.shadow_margin = margin
        self.shadow_offset = (int(14 * s), int(6 * s))
        self.part_light = light  # the same light falls on the part

        # Sensor noise: a few noisy copies of the belt, and noise fields for the part's box.
        self.noise = [Image.effect_noise((width, height), 5) for _ in range(self.NOISE_FIELDS)]
        self.noisy_backgrounds = [ImageChops.add(belt, n.convert(self.mode), 1, -128) for n in self.noise]
        # A frame is drawn straight into one of those copies and the touched box put back after
        # encoding, which spares copying the whole frame; the lock keeps snaps of one size apart.
        self.lock = threading.Lock()
        self.dirty = None
        from PIL import ImageFont
        size = max(10, int(15 * s))
        try:
            self.font = ImageFont.truetype("/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf", size)
        except OSError:
            try:
                self.font = ImageFont.truetype("DejaVuSans.ttf", size)
            except OSError:
                self.font = ImageFont.load_default()
        self.s = s

    def snap(self, frame, save):
        """Draws the frame and hands it to save(image) while it is valid; returns where the flange
        was drawn (see flange_pose)."""
        with self.lock:
            img = self.render(frame)
            try:
                save(img)
            finally:
                for box, patch in self.dirty:
                    img.paste(patch, box)
                self.dirty = None
            return self.last_pose

    def render(self, frame):
        from PIL import Image, ImageChops, ImageDraw
        w, h, d, s = self.width, self.height, self.diameter, self.s
        rng = random.Random(frame)
        # The part rides along the belt from left to right and turns a little every frame.
        travel = w + d
        x = int((frame * 0.11 * w) % travel) - d // 2 - d // 4
        x = min(max(x, -d // 3), w - 2 * d // 3)
        y = h // 2 - d // 2 + int(rng.uniform(-0.12, 0.12) * h)
        angle = (frame * 23.0 + rng.uniform(-4, 4)) % 360
        field = frame % self.NOISE_FIELDS
        img = self.noisy_backgrounds[field]
        m = self.shadow_margin
        ox, oy = self.shadow_offset
        label_box = (0, 0, int(160 * s), int(40 * s))
        part_box = (x - m, y - m, x + d + m + ox, y + d + m + oy)
        self.dirty = [(b[:2], img.crop(b)) for b in (label_box, part_box)]

        face = self.face.rotate(angle, Image.BILINEAR)
        shape = face.point(lambda v: min(255, v * 3))
        shadow = self.shadow_small.rotate(angle, Image.BILINEAR).resize(self.shadow.size, Image.BILINEAR)
        img.paste(0, (x - m + ox, y - m + oy), shadow)

        box = (x, y, x + d, y + d)
        # Light from the left, taken from the same light field the belt gets, at the part's place.
        lit = self.part_light.crop(box).point(lambda v: 190 + (v - 150) * 65 // 105)
        face = ImageChops.multiply(face, lit).point(lambda v: min(255, v * 5 // 4))
        face = ImageChops.add(face, self.noise[field].crop(box), 1, -128)
        if self.color:
            face = Image.merge("RGB", (face.point(lambda v: v * 94 // 100), face.point(lambda v: v * 97 // 100), face))
        img.paste(face, (x, y), shape)
        self.last_pose = flange_pose(x + d / 2.0, y + d / 2.0, d, angle)

        draw = ImageDraw.Draw(img)
        label = "#%06d" % frame
        pad = int(6 * s)
        tw, th = draw.textbbox((0, 0), label, font=self.font)[2:]
        draw.rectangle((pad, pad, pad + tw + 2 * pad, pad + th + pad), fill=(0, 0, 0) if self.color else 0)
        draw.text((2 * pad, pad + pad // 3), label, font=self.font,
                  fill=(255, 220, 60) if self.color else 255)
        return img


def flange_pose(cx, cy, d, angle):
    """Where the camera drew the flange, in image pixels (X right, Y down, pixel i covering i..i+1)
    and degrees (counter-clockwise on the screen): its centre, outer and bore radius, the direction
    of the keyway from the centre (90 = straight up when the part is not turned) and the six bolt
    holes."""
    import math
    pitch, hole = 0.36 * d, 0.0425 * d
    holes = []
    for k in range(6):
        a = math.radians(k * 60 + 30 - angle)  # clockwise from +X on the screen
        holes.append([round(cx + pitch * math.cos(a), 2), round(cy + pitch * math.sin(a), 2)])
    return {"found": True, "center": [round(cx, 2), round(cy, 2)], "radius": round((d - 1) / 2.0, 2),
            "bore_radius": round(0.13 * d, 2), "angle": round(angle, 3),
            "keyway_angle": round((90.0 + angle) % 360.0, 3), "bolt_holes": holes,
            "bolt_hole_radius": round(hole, 2)}


SCENES = {}
SCENES_LOCK = threading.Lock()


def camera_scene(width, height, color):
    key = (width, height, bool(color))
    with SCENES_LOCK:
        scene = SCENES.get(key)
        if scene is None:
            scene = SCENES[key] = CameraScene(width, height, color)
        return scene


def make_image(path, width, height, color, frame):
    """A synthetic camera picture (see CameraScene); the format follows the file name's extension."""
    ext = os.path.splitext(path)[1].lower()
    try:
        import PIL  # noqa: F401
    except ImportError:
        if ext != ".png":
            raise ValueError("JPEG needs python3-pil")
        cx, cy, r = (frame * 37) % width, height // 2, max(8, height // 8)
        write_png(path, width, height, color,
                  lambda x, y: (200, 200, 200) if (x - cx) ** 2 + (y - cy) ** 2 < r * r else (96, 96, 96))
        return {"found": True, "center": [cx + 0.5, cy + 0.5], "radius": float(r), "bore_radius": 0.0,
                "angle": 0.0, "keyway_angle": 90.0, "bolt_holes": [], "bolt_hole_radius": 0.0}
    if ext in (".jpg", ".jpeg"):
        save = lambda img: img.save(path, "JPEG", quality=85)
    else:
        save = lambda img: img.save(path, "PNG", compress_level=1)
    return camera_scene(width, height, color).snap(frame, save)


def result_path(image_path):
    """The controller path of an image's result file: the image's path with ".JSON" for its extension."""
    base, _ = os.path.splitext(image_path)
    return base + ".JSON"


def write_result(image_path, width, height, frame, pose):
    """Writes the result file of a snapped image (see result_path) and keeps it for /__sim/result."""
    import json
    result = {"image": image_path, "frame": frame, "width": width, "height": height}
    result.update(pose)
    body = json.dumps(result, indent=1) + "\n"
    local = controller_local_path(result_path(image_path))
    with open(local + ".tmp", "w", newline="") as fh:
        fh.write(body)
    os.replace(local + ".tmp", local)
    with STATE.lock:
        STATE.results[controller_local_path(image_path)] = body
    return body


def controller_local_path(path):
    virtual = controller_to_virtual(path)
    parts = virtual.strip("/").split("/")
    if not parts or parts[0] not in DEVICES or len(parts) < 2:
        raise ValueError("not a controller file path: %s" % path)
    return os.path.join(STATE.root, *parts)


SNAP_SIZES = [(640, 480), (1024, 768), (1280, 1024), (1600, 1200), (2592, 1944)]


def snap(path, width, height, color, fmt):
    if not (640 <= width <= 2592 and 480 <= height <= 1944):
        raise ValueError("size out of range (640x480 to 2592x1944)")
    if fmt:
        base, _ = os.path.splitext(path)
        path = base + (".PNG" if fmt.lower() == "png" else ".JPG")
    local = controller_local_path(path)
    os.makedirs(os.path.dirname(local), exist_ok=True)
    with STATE.lock:
        STATE.snap_counter += 1
        frame = STATE.snap_counter
    tmp = local + ".tmp"
    # make_image picks the format from the extension of the final name
    pose = make_image(local + ".tmp" + os.path.splitext(local)[1], width, height, color, frame)
    os.replace(tmp + os.path.splitext(local)[1], local)
    write_result(path, width, height, frame, pose)
    STATE.log("CAMERA snap %d -> %s (%dx%d %s)" % (frame, path, width, height, "colour" if color else "grey"))
    return path


def blank_mask(path, width, height):
    """A vision tool's mask with nothing masked (all black), as the controller keeps it before the
    operator paints one; the format follows the extension (PNG when it has none)."""
    if not (1 <= width <= 8192 and 1 <= height <= 8192):
        raise ValueError("size out of range")
    local = controller_local_path(path)
    os.makedirs(os.path.dirname(local), exist_ok=True)
    ext = os.path.splitext(local)[1].lower()
    tmp = local + ".tmp"
    try:
        from PIL import Image
        Image.new("RGB", (width, height)).save(tmp, "JPEG" if ext in (".jpg", ".jpeg") else "PNG")
    except ImportError:
        if ext in (".jpg", ".jpeg"):
            raise ValueError("JPEG needs python3-pil")
        write_png(tmp, width, height, True, lambda x, y: (0, 0, 0))
    os.replace(tmp, local)
    STATE.log("CAMERA mask %s (%dx%d)" % (path, width, height))
    return path


# ---------------------------------------------------------------- sample tree

def populate(root, big_mb):
    def text(path, body):
        local = controller_local_path(path)
        os.makedirs(os.path.dirname(local), exist_ok=True)
        if not os.path.exists(local):
            with open(local, "w", newline="") as fh:
                fh.write(body)

    def image(path, w, h, color, frame):
        local = controller_local_path(path)
        os.makedirs(os.path.dirname(local), exist_ok=True)
        if not os.path.exists(local):
            make_image(local, w, h, color, frame)

    for dev in DEVICES:
        os.makedirs(os.path.join(root, dev), exist_ok=True)
    text("MC:\\SUMMARY.DG", "CONTROLLER SUMMARY\r\nSOFTWARE V9.40P/01\r\n")
    text("MC:\\VISION\\TOOLS.TXT", "LOCATOR1\r\nBLOB2\r\nCALIB3\r\n")
    text("MD:\\ERRALL.LS", "ERROR LOG\r\nNO ERRORS\r\n")
    text("MDB:\\DIAG.TXT", "DIAGNOSTICS OK\r\n")
    text("FR:\\README.TXT", "FROM DEVICE\r\n")
    text("TD:\\TEMP.TXT", "TEMPORARY\r\n")
    text("UT1:\\NOTES.TXT", "USB NOTES\r\n")
    for dev in ("UD1", "MCV"):
        os.makedirs(os.path.join(root, dev, "IMAGES"), exist_ok=True)
    image("MC:\\CAMERA\\SNAP.JPG", 640, 480, True, 0)
    image("MC:\\VISION\\GREY640.PNG", 640, 480, False, 1)
    image("MC:\\VISION\\COLOR800.JPG", 800, 600, True, 2)
    image("MCV:\\IMAGES\\LOG0001.PNG", 640, 480, False, 3)
    image("UD1:\\IMAGES\\LOG0002.JPG", 640, 480, True, 4)
    image("UD1:\\REF\\REFERENCE.PNG", 320, 240, False, 5)
    # The vision log: images the controller logged during production, one folder per date and
    # process, and an index a page reads to fill the display's image log.
    index = []
    frame = 10
    for date in ("2026-11-20", "2026-11-21"):
        for process, folder in (("WELD SEAM", "WELD"), ("GLUE BEAD", "GLUE")):
            for stamp in ("08:15:02", "08:16:11"):
                path = "MCV:\\LOG\\%s\\%s\\%s.PNG" % (date.replace("-", ""), folder, stamp.replace(":", ""))
                image(path, 320, 240, False, frame)
                frame += 1
                index.append("%s;%s;%s;%s" % (date, process, stamp, path))
    text("MCV:\\LOG\\INDEX.TXT", "".join(line + "\r\n" for line in index))
    if big_mb > 0:
        local = controller_local_path("MD:\\BIG.BIN")
        if not os.path.exists(local) or os.path.getsize(local) != big_mb * 1024 * 1024:
            block = os.urandom(1024 * 1024)
            with open(local, "wb") as fh:
                for i in range(big_mb):
                    fh.write(block[i % 251:] + block[:i % 251])


# ---------------------------------------------------------------- main

RESTART_ARGS = None


def restart(down):
    time.sleep(0.1)
    STATE.log("CONTROLLER going down for %.1f s" % down)
    STATE.log_file.flush()
    # Sockets are not inherited over exec: every connection drops and nothing listens until the
    # new process has waited `down` seconds and bound the same ports again.
    args = RESTART_ARGS + ["--start-delay", str(down), "--keep-root"]
    os.execv(sys.executable, [sys.executable, os.path.abspath(__file__)] + args)


def main():
    global STATE, RESTART_ARGS
    parser = argparse.ArgumentParser(description="Robot controller simulator (FTP + HTTP file services).",
                                     epilog=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--ftp-port", type=int, default=2121, help="FTP port, 0 picks a free one (default 2121)")
    parser.add_argument("--http-port", type=int, default=8080, help="HTTP port, 0 picks a free one (default 8080)")
    parser.add_argument("--user", default="robot", help="FTP user name (default robot)")
    parser.add_argument("--password", default="robot", help="FTP password (default robot)")
    parser.add_argument("--host", default="127.0.0.1",
                        help="loopback address to listen on, one per simulated controller (default 127.0.0.1)")
    parser.add_argument("--anonymous", action="store_true", help="also accept anonymous FTP logins")
    parser.add_argument("--root", help="device tree folder (default: a new temporary folder)")
    parser.add_argument("--log", help="protocol log file (default: protocol.log beside the device tree)")
    parser.add_argument("--big-file-mb", type=int, default=0, help="also create MD:\\BIG.BIN of this many MiB")
    parser.add_argument("--keep-root", action="store_true", help="do not remove the device tree at exit")
    parser.add_argument("--start-delay", type=float, default=0.0, help=argparse.SUPPRESS)
    args = parser.parse_args()

    logging.basicConfig(level=logging.ERROR)
    # A polite stop (SIGTERM) cleans up like Ctrl+C does.
    signal.signal(signal.SIGTERM, lambda *_: (_ for _ in ()).throw(KeyboardInterrupt()))
    if args.start_delay > 0:
        time.sleep(args.start_delay)

    made_root = False
    if args.root:
        root = os.path.abspath(args.root)
        os.makedirs(root, exist_ok=True)
    else:
        root = tempfile.mkdtemp(prefix="nxrsim-")
        made_root = True
    log_path = args.log or os.path.join(os.path.dirname(root), os.path.basename(root) + "-protocol.log")
    STATE = State(os.path.realpath(root), log_path)
    populate(STATE.root, args.big_file_mb)

    authorizer = ControllerAuthorizer()
    authorizer.add_user(args.user, args.password, STATE.root, perm="elradfmwMT")
    if args.anonymous:
        authorizer.add_anonymous(STATE.root, perm="elr")
    ControllerFTPHandler.authorizer = authorizer
    ControllerFTPHandler.use_sendfile = True
    ftp = FTPServer((args.host, args.ftp_port), ControllerFTPHandler)
    ftp.max_cons = 256

    ThreadingHTTPServer.allow_reuse_address = True
    ThreadingHTTPServer.daemon_threads = True
    http = ThreadingHTTPServer((args.host, args.http_port), ControllerHTTPHandler)
    threading.Thread(target=http.serve_forever, daemon=True).start()

    ftp_port = ftp.socket.getsockname()[1]
    http_port = http.server_address[1]
    RESTART_ARGS = ["--host", args.host, "--ftp-port", str(ftp_port), "--http-port", str(http_port), "--user", args.user,
                    "--password", args.password, "--root", STATE.root, "--log", log_path,
                    "--big-file-mb", str(args.big_file_mb)] + (["--anonymous"] if args.anonymous else [])
    STATE.log("CONTROLLER up ftp=%d http=%d" % (ftp_port, http_port))
    print("NXRSIM READY ftp=%d http=%d root=%s log=%s" % (ftp_port, http_port, STATE.root, log_path), flush=True)
    try:
        ftp.serve_forever(handle_exit=True)
    except KeyboardInterrupt:
        pass
    finally:
        http.shutdown()
        if made_root and not args.keep_root:
            shutil.rmtree(STATE.root, ignore_errors=True)
            if not args.log:
                STATE.log_file.close()
                os.remove(log_path)


if __name__ == "__main__":
    main()
