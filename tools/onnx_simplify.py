"""Does beforehand what a model would do again for every picture.

PP-OCR's networks multiply and shift every layer by single numbers, and spell their activation
(hard swish) in four steps. All of it passes over whole layers, which takes as long as the
convolutions themselves. The numbers go into the weights of the convolution before or after, and the
activation into two steps; what the network answers stays the same but for rounding.
"""

import array
import itertools
import struct

from onnx_format import (ATTRIBUTE_TENSOR, BYTES, FIXED32, FLOAT, GRAPH_NODE, NODE_ATTRIBUTE,
                         NODE_INPUT, NODE_NAME, NODE_OUTPUT, NODE_TYPE, TENSOR_DIMENSION,
                         TENSOR_RAW, TENSOR_TYPE, VARINT, message, parse, text, texts,
                         values)

ATTRIBUTE_NAME, ATTRIBUTE_FLOAT, ATTRIBUTE_INTS, ATTRIBUTE_KIND = 1, 2, 8, 20
KIND_FLOAT, KIND_TENSOR = 1, 4


class Node:
    def __init__(self, fields):
        self.type = texts(fields, NODE_TYPE)[0]
        self.inputs = texts(fields, NODE_INPUT)
        self.outputs = texts(fields, NODE_OUTPUT)
        self.others = [f for f in fields if f[0] not in (NODE_TYPE, NODE_INPUT, NODE_OUTPUT)]

    def attribute(self, name):
        """The fields of the attribute of that name; none when it has no such."""
        attributes = (parse(v) for v in values(self.others, NODE_ATTRIBUTE))
        return next((a for a in attributes if texts(a, ATTRIBUTE_NAME) == [name]), None)

    def field(self):
        return message(GRAPH_NODE, [text(NODE_INPUT, i) for i in self.inputs]
                       + [text(NODE_OUTPUT, o) for o in self.outputs]
                       + [text(NODE_TYPE, self.type)] + self.others)


def make_node(kind, inputs, output, attributes=()):
    return Node([text(NODE_TYPE, kind), text(NODE_OUTPUT, output), text(NODE_NAME, output),
                 *[text(NODE_INPUT, i) for i in inputs],
                 *[message(NODE_ATTRIBUTE, a) for a in attributes]])


def float_attribute(name, value):
    return [text(ATTRIBUTE_NAME, name), (ATTRIBUTE_FLOAT, FIXED32, struct.pack("<f", value)),
            (ATTRIBUTE_KIND, VARINT, KIND_FLOAT)]


def floats_of(node):
    """The numbers of a constant of floats and their dimensions, else none."""
    attribute = node.attribute("value")
    tensor = parse(values(attribute, ATTRIBUTE_TENSOR)[0]) if attribute else []
    raw = values(tensor, TENSOR_RAW)
    if values(tensor, TENSOR_TYPE) != [FLOAT] or not raw:
        return None
    return array.array("f", raw[0]), values(tensor, TENSOR_DIMENSION)


def make_constant(name, numbers, dimensions):
    raw = array.array("f", numbers).tobytes()
    tensor = ([(TENSOR_DIMENSION, VARINT, d) for d in dimensions]
              + [(TENSOR_TYPE, VARINT, FLOAT), (TENSOR_RAW, BYTES, raw)])
    return make_node("Constant", [], name, [[text(ATTRIBUTE_NAME, "value"),
                                             message(ATTRIBUTE_TENSOR, tensor),
                                             (ATTRIBUTE_KIND, VARINT, KIND_TENSOR)]])


class Graph:
    def __init__(self, fields):
        self.rest = [f for f in fields if f[0] != GRAPH_NODE]
        self.nodes = [Node(parse(v)) for v in values(fields, GRAPH_NODE)]
        self.numbers = itertools.count()
        self.index()

    def index(self):
        self.maker = {o: node for node in self.nodes for o in node.outputs}
        self.users = {}
        for node in self.nodes:
            for name in node.inputs:
                self.users.setdefault(name, []).append(node)

    def fields(self):
        used = {name for node in self.nodes for name in node.inputs}
        kept = [n for n in self.nodes if n.type != "Constant" or n.outputs[0] in used]
        return [node.field() for node in kept] + self.rest

    def constant(self, name):
        maker = self.maker.get(name)
        return floats_of(maker) if maker is not None and maker.type == "Constant" else None

    def number(self, name):
        """The value of a constant of one float, else none."""
        floats = self.constant(name)
        return floats[0][0] if floats and len(floats[0]) == 1 else None

    def only_user(self, name):
        users = self.users.get(name, [])
        return users[0] if len(users) == 1 else None

    def by_number(self, node, kind):
        """The other input and the number, when the node is that operation with a number."""
        if node is not None and node.type == kind and len(node.inputs) == 2:
            for name, other in (node.inputs, node.inputs[::-1]):
                if self.number(name) is not None:
                    return other, self.number(name)
        return None

    def replace_constant(self, node, position, numbers, dimensions):
        name = f"prepared{next(self.numbers)}"
        self.nodes.insert(0, make_constant(name, numbers, dimensions))
        node.inputs[position] = name

    def remove(self, node, replacement):
        """Takes the node out; what used its output uses the replacement."""
        self.nodes.remove(node)
        for other in self.nodes:
            other.inputs = [replacement if i == node.outputs[0] else i for i in other.inputs]


def has_weights(graph, node):
    return (node is not None and node.type == "Conv" and len(node.inputs) == 3
            and graph.constant(node.inputs[1]) and graph.constant(node.inputs[2]))


def scale(graph, conv, factor):
    weights, dimensions = graph.constant(conv.inputs[1])
    graph.replace_constant(conv, 1, [w * factor for w in weights], dimensions)


def change_bias(graph, conv, change):
    bias, dimensions = graph.constant(conv.inputs[2])
    graph.replace_constant(conv, 2, [change(i, b) for i, b in enumerate(bias)], dimensions)


def fold_into_conv_before(graph, node):
    """conv(x) * a and conv(x) + a"""
    for kind in ("Mul", "Add"):
        found = graph.by_number(node, kind)
        conv = graph.maker.get(found[0]) if found else None
        if not has_weights(graph, conv) or graph.only_user(found[0]) is not node:
            continue
        number = found[1]
        if kind == "Mul":
            scale(graph, conv, number)
            change_bias(graph, conv, lambda _, b: b * number)
        else:
            change_bias(graph, conv, lambda _, b: b + number)
        graph.remove(node, found[0])
        return True
    return False


def fold_into_conv_after(graph, node):
    """conv(x * a + c), where the border of a padded convolution stays 0"""
    shift = graph.by_number(node, "Add")
    factor = graph.by_number(graph.maker.get(shift[0]), "Mul") if shift else None
    conv = graph.only_user(node.outputs[0])
    if (not factor or factor[1] == 0 or not has_weights(graph, conv)
            or graph.only_user(shift[0]) is not node):
        return False
    source, a = factor
    c = shift[1]
    pads = conv.attribute("pads")
    if pads is not None and not any(values(pads, ATTRIBUTE_INTS)):
        weights, dimensions = graph.constant(conv.inputs[1])
        size = len(weights) // dimensions[0]
        change_bias(graph, conv,
                    lambda i, b: b + c * sum(weights[i * size:(i + 1) * size]))
        graph.remove(node, source)
    else:
        node.inputs = [source, f"shift{next(graph.numbers)}"]
        graph.nodes.insert(0, make_constant(node.inputs[1], [c / a], [1]))
    scale(graph, conv, a)
    multiply = graph.maker[shift[0]]
    graph.nodes.remove(multiply)
    return True


def clips_from_0_to_6(graph, node):
    if len(node.inputs) == 3:
        return [graph.number(i) for i in node.inputs[1:]] == [0, 6]
    limits = [node.attribute(name) for name in ("min", "max")]
    return None not in limits and [struct.unpack("<f", values(l, ATTRIBUTE_FLOAT)[0])[0]
                                   for l in limits] == [0, 6]


def shorten_hard_swish(graph, node):
    """x * clip(x + 3, 0, 6) / 6"""
    division = graph.by_number(node, "Div")
    product = graph.maker.get(division[0]) if division and division[1] == 6 else None
    if product is None or product.type != "Mul" or graph.only_user(division[0]) is not node:
        return False
    for source, clipped in (product.inputs, product.inputs[::-1]):
        clip = graph.maker.get(clipped)
        if clip is None or clip.type != "Clip" or not clips_from_0_to_6(graph, clip):
            continue
        if graph.by_number(graph.maker.get(clip.inputs[0]), "Add") != (source, 3):
            continue
        plus = graph.maker[clip.inputs[0]]
        if graph.only_user(clipped) is not product or graph.only_user(plus.outputs[0]) is not clip:
            continue
        gate = make_node("HardSigmoid", [source], clipped,
                         [float_attribute("alpha", 1 / 6), float_attribute("beta", 0.5)])
        graph.nodes[graph.nodes.index(clip)] = gate
        graph.nodes.remove(plus)
        graph.remove(node, division[0])
        return True
    return False


def simplified(fields):
    graph = Graph(fields)
    changed = True
    while changed:
        changed = False
        for rule in (fold_into_conv_before, shorten_hard_swish, fold_into_conv_after):
            for node in list(graph.nodes):
                if node in graph.nodes and rule(graph, node):
                    graph.index()
                    changed = True
    return graph.fields()
