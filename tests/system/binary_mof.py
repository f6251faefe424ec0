"""Writes the binary MOF of the emulated machine's firmware: what a notebook's firmware says about its WMI classes.

  binary_mof.py blob OUT [OTHER]      the blob of the device with lights, and the other device's
  binary_mof.py asl OUT TEMPLATE      the source of the firmware's table, from firmware.dsl.in

The format stands at the head of platform/linux/binary_mof.h.
"""
import struct
import sys

TYPES = {"string": 8, "boolean": 11, "uint8": 17, "uint32": 19, "uint64": 21}
BLOB_GUID = "05901221-D566-11D1-B2F0-00A0C9062910"  # by which every firmware marks a binary MOF
LIGHTS_GUID = "7B0C2A6E-51D3-4E0B-9C55-2F7A10E4C0DE"  # made up
OTHER_GUID = "1D4C7C52-0E9A-4C39-8A53-6D1B7E55A0F1"  # made up, too

# Name, id, in-parameters, out-parameters. A parameter has a name, a type and, for an array, its length or 0.
METHODS = [
    ("SetGamingLED", 2, [("gmInput", "uint8", 0)], [("gmOutput", "uint32", None)]),
    ("GetGamingLED", 4, [("gmInput", "uint32", None)], [("gmReturn", "uint8", None), ("gmOutput", "uint8", 15)]),
    ("SetGamingRgbKb", 6, [("gmInput", "uint64", None)], [("gmOutput", "uint32", None)]),
    ("SetGamingKBBacklight", 20, [("gmInput", "uint8", 16)], [("gmOutput", "uint32", None)]),
    ("AnswerPackage", 31, [], [("gmReturn", "uint32", None), ("gmOutput", "uint8", 3)]),
    ("AnswerManyBytes", 32, [], [("gmOutput", "uint8", 0)]),
    ("AnswerLate", 33, [], [("gmOutput", "uint32", None)]),
    ("Echo", 34, [("gmInput", "uint8", 4)], [("gmOutput", "uint8", 4)]),
    ("AnswerEmpty", 35, [], [("gmOutput", "uint64", None)]),
    ("AnswerNothing", 36, [], [("gmOutput", "uint32", None)]),
]
OTHER_METHODS = [("Ask", 1, [("number", "uint32", None)], [("answer", "uint32", None)])]

# Lowest distance of a copy, its mark, the mark's bits, the distance's bits.
DISTANCES = [(0, 0, 2, 6), (64, 3, 3, 8), (320, 7, 3, 12)]
END_OF_RUN = 0x113F  # a distance that no copy has
RUN = 512


def longest_copy(data, at, end):
    """Distance and length of the longest stretch before `at` that repeats what comes. The two may overlap."""
    distance, length = 0, 1
    while at + length < end:
        found = data.rfind(data[at:at + length + 1], max(0, at - END_OF_RUN + 1), at + length)
        if found < 0:
            break
        distance, length = at - found, length + 1
    return distance, length


def pack(data):
    """Copies wherever two bytes or more repeat, single bytes elsewhere. No copy reaches over the end of a run."""
    bits, widths = [], set()

    def put(value, count):
        bits.extend(value >> i & 1 for i in range(count))

    def put_distance(distance):
        lowest, mark, mark_bits, width = max(one for one in DISTANCES if one[0] <= distance)
        put(mark, mark_bits)
        put(distance - lowest, width)
        return width

    at = 0
    while at < len(data):
        end = min(at - at % RUN + RUN, len(data))
        distance, length = longest_copy(data, at, end)
        if length == 1:
            put(1 if data[at] & 0x80 else 2, 2)
            put(data[at] & 0x7F, 7)
        else:
            widths.add(put_distance(distance))
            zeros = (length - 1).bit_length() - 1
            put(1 << zeros, zeros + 1)
            put(length - 1, zeros)
        at += length
        if at == end:
            put_distance(END_OF_RUN)
    bits.extend([0] * (-len(bits) % 16))
    packed = bytes(sum(bit << i for i, bit in enumerate(bits[at:at + 8])) for at in range(0, len(bits), 8))
    return b"DS\x00\x01" + packed, widths


def text(value):
    return value.encode("utf-16le") + b"\0\0"


def words(*values):
    return b"".join(struct.pack("<I", value & 0xFFFFFFFF) for value in values)


def sized(body):
    return words(len(body) + 4) + body


def entries(items):
    return sized(words(len(items)) + b"".join(items))


def value_of(value):
    """Type and bytes of a qualifier's value."""
    if value is True:
        return 11, words(0xFFFF)
    return (3, words(value)) if isinstance(value, int) else (8, text(value))


def qualifier(name, value=True):
    kind, data = value_of(value)
    return sized(words(kind, 0, len(text(name))) + text(name) + data)


def system(name, value):
    kind, data = value_of(value)
    return sized(words(kind, 0, len(text(name)), -1) + text(name) + data)


def member(name, kind, *qualifiers, length=None):
    all_ = [qualifier("CIMTYPE", kind), *qualifiers] + ([qualifier("MAX", length)] if length else [])
    number = TYPES[kind] | (0x2000 if length is not None else 0)
    return sized(words(number, 0, -1, len(text(name))) + text(name) + entries(all_))


def method(name, number, ins, outs):
    objects, count, place = b"", 0, 0
    for direction, parameters in (("in", ins), ("out", outs)):
        if not parameters:
            continue
        members = []
        for parameter, kind, length in parameters:
            members.append(member(parameter, kind, qualifier(direction), qualifier("ID", place), length=length))
            place += 1
        body = entries([*members, system("__CLASS", "__PARAMETERS")])
        objects += sized(words(-1, 0, len(body), 1) + body)
        count += 1
    named = text(name) + words(1, 1, count, len(objects) + 4) + objects
    qualifiers = entries([qualifier("WmiMethodId", number), qualifier("Implemented"), qualifier("Description", name)])
    return sized(words(0x200D, 0, len(text(name)), len(named)) + named + qualifiers)


def blob(name, guid, methods):
    """The blob, and the widths of the distances of its copies."""
    qualifiers = entries([qualifier("WMI"), qualifier("Dynamic"), qualifier("Provider", "WmiProv"),
                          qualifier("guid", "{%s}" % guid)])
    members = entries([member("InstanceName", "string", qualifier("key"), qualifier("read")),
                       member("Active", "boolean", qualifier("read")),
                       system("__CLASS", name), system("__NAMESPACE", "root\\wmi"), system("__CLASSFLAGS", 1)])
    lists = qualifiers + members
    class_ = sized(words(0, len(qualifiers), len(lists), 0) + lists + entries([method(*one) for one in methods]))
    body = words(1, 1, 1) + class_
    plain = b"FOMB" + words(len(body) + 8) + body
    packed, widths = pack(plain)
    return b"FOMB" + words(1, len(packed), len(plain)) + packed, widths


def lights_blob():
    data, widths = blob("ZarnGamingFunction", LIGHTS_GUID, METHODS)
    if len(widths) != len(DISTANCES):
        raise ValueError("the blob of the lights leaves a kind of copy untried")
    return data


def other_blob():
    return blob("SomethingElse", OTHER_GUID, OTHER_METHODS)[0]


def guids(*all_):
    """What _WDG holds: each GUID as Windows stores it, two letters, the number of instances, flags (2: methods)."""
    data = b""
    for guid, letters, flags in all_:
        first, second, third, *rest = (bytes.fromhex(part) for part in guid.split("-"))
        data += first[::-1] + second[::-1] + third[::-1] + b"".join(rest) + letters + bytes([1, flags])
    return data


def asl(data):
    return ",\n        ".join(", ".join("0x%02X" % byte for byte in data[i:i + 16]) for i in range(0, len(data), 16))


def main():
    verb, out, *rest = sys.argv[1:]
    if verb == "blob":
        for path, data in zip([out, *rest], (lights_blob(), other_blob())):
            with open(path, "wb") as file:
                file.write(data)
    elif verb == "asl":
        with open(rest[0]) as file:
            source = file.read()
        for mark, data in (("@WDG@", guids((LIGHTS_GUID, b"ZG", 2), (BLOB_GUID, b"BM", 0))), ("@BMOF@", lights_blob()),
                           ("@WDG2@", guids((BLOB_GUID, b"BX", 0), (OTHER_GUID, b"AA", 2))), ("@BMOF2@", other_blob())):
            source = source.replace(mark, asl(data))
        with open(out, "w") as file:
            file.write(source)
    else:
        raise SystemExit(__doc__)


if __name__ == "__main__":
    main()
