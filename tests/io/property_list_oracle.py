"""Reads and writes saved documents with Python's own property-list module.

    read FOLDER         describes every file of the folder, in order of name
    write FORM FOLDER   writes random documents, FORM binary or xml, and describes them

A description is a few lines of text with every bit of every value.
"""

import pathlib
import plistlib
import random
import struct
import sys

STYLES = ["solidBlack", "solidWhite", "noise"]
FORMS = {"binary": plistlib.FMT_BINARY, "xml": plistlib.FMT_XML}


def describe(document):
    assert set(document) == {"version", "sourceFilename", "sourceData", "pages"}
    print("version", document["version"])
    print("name", document["sourceFilename"].encode("utf-8").hex())
    print("data", document["sourceData"].hex())
    for page in document["pages"]:
        print("page")
        for box in page:
            assert set(box) == {"rect", "style", "detected"}
            (x, y), (width, height) = box["rect"]
            numbers = [x, y, width, height]
            assert all(type(number) is float for number in numbers)
            sides = " ".join(struct.pack(">d", number).hex() for number in numbers)
            print("box", sides, box["style"], "true" if box["detected"] is True else "false")


def random_document(generator):
    def number():
        return generator.choice([0.0, 1.0, 0.005, -0.25, 1e300, 5e-320, generator.random(), generator.random()])

    def box():
        return {
            "rect": [[number(), number()], [number(), number()]],
            "style": generator.choice(STYLES),
            "detected": generator.random() < 0.5,
        }

    return {
        "version": generator.choice([1, 2, 0, 300, 70000, -5, 2**40, 2**63 - 1]),
        "sourceFilename": generator.choice(["a.png", "", "é & <b>.PDF", "\U0001f512.jpg", "n" * 300]),
        "sourceData": generator.randbytes(generator.choice([0, 1, 2, 3, 14, 15, 256, 70000])),
        "pages": [
            [box() for _ in range(generator.choice([0, 1, 14, 15, 300]))]
            for _ in range(generator.choice([0, 1, 3, 20]))
        ],
    }


def main():
    folder = pathlib.Path(sys.argv[-1])
    if sys.argv[1] == "read":
        for file in sorted(folder.iterdir()):
            describe(plistlib.loads(file.read_bytes()))
        return
    generator = random.Random(5)
    for i in range(40):
        document = random_document(generator)
        (folder / str(100 + i)).write_bytes(plistlib.dumps(document, fmt=FORMS[sys.argv[2]]))
        describe(document)


if __name__ == "__main__":
    main()
