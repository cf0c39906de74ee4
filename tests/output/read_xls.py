"""Prints every cell of an Excel 2.x file as one tab-separated line:
row, column (both 1-based), cell type (text, number, date), value, format index, format text.

xlrd refuses the document type that our writer keeps in the start record, so the file is
read from a copy whose type field says "worksheet"; every other byte is read as written.
"""
import sys

import xlrd


def main(path):
    data = bytearray(open(path, "rb").read())
    if data[:4] != b"\x09\x00\x04\x00" or data[6:8] != b"\x0a\x00":
        sys.exit("not a start record with document type 10")
    data[6] = 0x10
    book = xlrd.open_workbook(file_contents=bytes(data), formatting_info=True,
                              encoding_override="cp1252")
    sheet = book.sheet_by_index(0)
    kinds = {xlrd.XL_CELL_TEXT: "text", xlrd.XL_CELL_NUMBER: "number", xlrd.XL_CELL_DATE: "date"}
    for r in range(sheet.nrows):
        for c in range(sheet.ncols):
            cell = sheet.cell(r, c)
            if cell.ctype == xlrd.XL_CELL_EMPTY:
                continue
            xf = book.xf_list[cell.xf_index]
            value = cell.value if cell.ctype == xlrd.XL_CELL_TEXT else repr(float(cell.value))
            print("%d\t%d\t%s\t%s\t%d\t%s" % (r + 1, c + 1, kinds.get(cell.ctype, "other"), value,
                                             xf.format_key, book.format_map[xf.format_key].format_str))


if __name__ == "__main__":
    main(sys.argv[1])
