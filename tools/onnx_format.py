"""As much of the ONNX format as preparing our models takes: protocol buffers, read and written
without losing what is not understood, with the field numbers of onnx.proto3."""

# Field numbers of onnx.proto3.
MODEL_GRAPH = 7
GRAPH_NODE, GRAPH_INITIALIZER, GRAPH_INPUT, GRAPH_OUTPUT, GRAPH_VALUE_INFO = 1, 5, 11, 12, 13
NODE_INPUT, NODE_OUTPUT, NODE_NAME, NODE_TYPE, NODE_ATTRIBUTE = 1, 2, 3, 4, 5
ATTRIBUTE_TENSOR = 5
TENSOR_DIMENSION, TENSOR_TYPE, TENSOR_NAME, TENSOR_RAW = 1, 2, 8, 9
VALUE_NAME, VALUE_TYPE = 1, 2
FLOAT = 1

VARINT, FIXED64, BYTES, FIXED32 = 0, 1, 2, 5


class BadModel(Exception):
    pass


def read_varint(data, at):
    value = shift = 0
    while True:
        byte = data[at]
        at += 1
        value |= (byte & 0x7F) << shift
        shift += 7
        if byte < 0x80:
            return value, at


def write_varint(value):
    out = bytearray()
    while value > 0x7F:
        out.append(value & 0x7F | 0x80)
        value >>= 7
    out.append(value)
    return bytes(out)


def parse(message):
    """The fields of a message as (number, wire type, value), in order."""
    fields = []
    at = 0
    while at < len(message):
        key, at = read_varint(message, at)
        number, wire = key >> 3, key & 7
        if wire == VARINT:
            value, at = read_varint(message, at)
        else:
            if wire == BYTES:
                size, at = read_varint(message, at)
            elif wire in (FIXED32, FIXED64):
                size = 4 if wire == FIXED32 else 8
            else:
                raise BadModel(f"unknown wire type {wire}")
            value = message[at:at + size]
            at += size
        fields.append((number, wire, value))
    return fields


def serialise(fields):
    out = bytearray()
    for number, wire, value in fields:
        out += write_varint(number << 3 | wire)
        if wire == VARINT:
            out += write_varint(value)
            continue
        if wire == BYTES:
            out += write_varint(len(value))
        out += value
    return bytes(out)


def values(fields, number):
    return [value for n, _, value in fields if n == number]


def texts(fields, number):
    return [value.decode() for value in values(fields, number)]


def text(number, value):
    return (number, BYTES, value.encode())


def message(number, fields):
    return (number, BYTES, serialise(fields))


def float_value(name, sides=None):
    """A ValueInfoProto of a float tensor; sides are numbers or names, none leaves them open."""
    tensor = [(1, VARINT, FLOAT)]
    if sides is not None:
        shape = [message(1, [text(2, side) if isinstance(side, str) else (1, VARINT, side)])
                 for side in sides]
        tensor.append(message(2, shape))
    return [text(VALUE_NAME, name), message(VALUE_TYPE, [message(1, tensor)])]


def map_graph(model, change):
    """The model with its graph's fields passed through change."""
    return serialise([(n, w, serialise(change(parse(v))) if n == MODEL_GRAPH else v)
                      for n, w, v in parse(model)])
