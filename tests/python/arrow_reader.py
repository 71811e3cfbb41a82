"""A consumer of Arrow C streams that needs no package: the structures as ctypes, and values as lists."""

import ctypes as c
import struct


class Schema(c.Structure):
    pass


class Array(c.Structure):
    pass


class Stream(c.Structure):
    pass


def _release(kind):
    return c.CFUNCTYPE(None, c.POINTER(kind))


Schema._fields_ = [
    ("format", c.c_char_p), ("name", c.c_char_p), ("metadata", c.c_void_p), ("flags", c.c_int64),
    ("n_children", c.c_int64), ("children", c.POINTER(c.POINTER(Schema))),
    ("dictionary", c.POINTER(Schema)), ("release", _release(Schema)), ("private_data", c.c_void_p),
]
Array._fields_ = [
    ("length", c.c_int64), ("null_count", c.c_int64), ("offset", c.c_int64), ("n_buffers", c.c_int64),
    ("n_children", c.c_int64), ("buffers", c.POINTER(c.c_void_p)),
    ("children", c.POINTER(c.POINTER(Array))), ("dictionary", c.POINTER(Array)),
    ("release", _release(Array)), ("private_data", c.c_void_p),
]
Stream._fields_ = [
    ("get_schema", c.CFUNCTYPE(c.c_int, c.POINTER(Stream), c.POINTER(Schema))),
    ("get_next", c.CFUNCTYPE(c.c_int, c.POINTER(Stream), c.POINTER(Array))),
    ("get_last_error", c.CFUNCTYPE(c.c_char_p, c.POINTER(Stream))),
    ("release", _release(Stream)), ("private_data", c.c_void_p),
]

_pointer = c.pythonapi.PyCapsule_GetPointer
_pointer.restype, _pointer.argtypes = c.c_void_p, [c.py_object, c.c_char_p]


def read_stream(capsule):
    """The formats by name, and the batches, each a dict of lists. Releases the stream."""
    stream = c.cast(_pointer(capsule, b"arrow_array_stream"), c.POINTER(Stream))
    schema = Schema()
    _check(stream, stream.contents.get_schema(stream, schema))
    fields = [schema.children[i].contents for i in range(schema.n_children)]
    formats = {field.name.decode(): field.format.decode() for field in fields}
    batches = []
    while True:
        array = Array()
        _check(stream, stream.contents.get_next(stream, array))
        if not array.release:
            break
        columns = [array.children[i].contents for i in range(array.n_children)]
        batches.append({f.name.decode(): _values(f, a) for f, a in zip(fields, columns)})
        array.release(array)
    schema.release(schema)
    stream.contents.release(stream)
    return formats, batches


def _check(stream, code):
    if code:
        raise OSError(code, stream.contents.get_last_error(stream).decode())


def _buffer(array, place, code, count):
    raw = c.string_at(array.buffers[place], count * struct.calcsize(code)) if count else b""
    return struct.unpack(f"={count}{code}", raw)


def _values(schema, array):
    assert array.offset == 0
    kind = schema.format.decode()
    count = array.length
    child = lambda: _values(schema.children[0].contents, array.children[0].contents)
    if kind == "g":
        values = _buffer(array, 1, "d", count)
    elif kind == "i":
        texts = _values(schema.dictionary.contents, array.dictionary.contents)
        values = [texts[code] if code >= 0 else None for code in _buffer(array, 1, "i", count)]
    elif kind == "U":
        ends = _buffer(array, 1, "q", count + 1)
        values = [c.string_at(array.buffers[2] + a, b - a).decode() for a, b in zip(ends, ends[1:])]
    elif kind == "+w:2":
        parts = child()
        values = [complex(parts[2 * i], parts[2 * i + 1]) for i in range(count)]
    elif kind == "+L":
        ends, cells = _buffer(array, 1, "q", count + 1), child()
        values = [cells[a:b] for a, b in zip(ends, ends[1:])]
    else:
        values = _buffer(array, 1, "q", count)
    if array.null_count:
        bits = c.string_at(array.buffers[0], (count + 7) // 8)
        values = [v if bits[i // 8] >> (i % 8) & 1 else None for i, v in enumerate(values)]
        assert sum(v is None for v in values) == array.null_count
    return list(values)
