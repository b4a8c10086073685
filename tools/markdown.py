"""Markdown for the pages that scripts write."""


def table(header, rows):
    """A table whose columns line up in the text, too."""
    widths = [max(len(str(row[i])) for row in [header, *rows]) for i in range(len(header))]
    lines = [[str(cell).ljust(width) for cell, width in zip(row, widths)]
             for row in [header, ["-" * width for width in widths], *rows]]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)
