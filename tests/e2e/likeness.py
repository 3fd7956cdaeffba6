"""How alike two pictures look to a person. Each is drawn smaller and softer first, so that another rasteriser's edges of
letters count for nothing, then compared block by block: what has gone, moved or changed its colour stands out in its
blocks, however large the rest of the picture is."""

import numpy
from PIL import Image, ImageFilter

SCALE = 2        # the pictures are compared at half their size
SOFTNESS = 0.8   # standard deviation of the blur (smaller pixels)
BLOCK = 8        # the side of a block (smaller pixels)
# A block differs when its mean colour (of 255) or its brightness inside, correlated with the other's, is this far off.
COLOUR_LIMIT = 14
STRUCTURE_LIMIT = 0.7
# The unevenness below which a block counts as plain (squared brightness), as in the structural similarity index.
PLAIN = (0.03 * 255) ** 2


def softened(image):
    size = (max(BLOCK, image.width // SCALE), max(BLOCK, image.height // SCALE))
    small = image.convert("RGB").resize(size, Image.Resampling.BOX).filter(ImageFilter.GaussianBlur(SOFTNESS))
    return numpy.asarray(small, dtype=float)


def blocks(values):
    rows, columns = values.shape[0] // BLOCK, values.shape[1] // BLOCK
    cut = values[:rows * BLOCK, :columns * BLOCK]
    return cut.reshape(rows, BLOCK, columns, BLOCK, -1).swapaxes(1, 2).reshape(rows, columns, BLOCK * BLOCK, -1)


def differing_blocks(one, other):
    """The places (left, top in pixels) of the blocks that look different. Pictures of different sizes differ as a whole,
    unless by a pixel or two, as lines of text of another font engine do."""
    if abs(one.width - other.width) > 2 or abs(one.height - other.height) > 2:
        return [(0, 0)] * (one.width * one.height // (SCALE * BLOCK) ** 2)
    size = (min(one.width, other.width), min(one.height, other.height))
    a, b = (blocks(softened(image.crop((0, 0, *size)))) for image in (one, other))
    colour = numpy.abs(a.mean(axis=2) - b.mean(axis=2)).max(axis=2)

    light = numpy.array([0.299, 0.587, 0.114])
    x, y = a @ light, b @ light
    x, y = x - x.mean(axis=2, keepdims=True), y - y.mean(axis=2, keepdims=True)
    likeness = (2 * (x * y).mean(axis=2) + PLAIN) / ((x * x).mean(axis=2) + (y * y).mean(axis=2) + PLAIN)

    differ = (colour > COLOUR_LIMIT) | (likeness < STRUCTURE_LIMIT)
    return [(int(column) * BLOCK * SCALE, int(row) * BLOCK * SCALE) for row, column in numpy.argwhere(differ)]
