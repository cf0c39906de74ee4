#!/usr/bin/python3
"""An independent Modbus TCP server for the client's tests: COUNT holding registers from
START, register a holding (a * 40503 + 12345) mod 65536, served on 127.0.0.1:PORT until
standard input ends.

Usage: pymodbus_server.py PORT START COUNT
"""

import logging
import os
import sys
import threading

from pymodbus.datastore import (ModbusSequentialDataBlock, ModbusServerContext,
                                ModbusSlaveContext)
from pymodbus.server import StartTcpServer


def main():
    port, start, count = (int(v) for v in sys.argv[1:4])
    values = [(a * 40503 + 12345) & 0xFFFF for a in range(start, start + count)]
    # Clients that come and go are this server's normal life, not errors worth a line.
    logging.getLogger("pymodbus").setLevel(logging.CRITICAL)
    # The test ends the server by closing its standard input.
    threading.Thread(target=lambda: (sys.stdin.read(), os._exit(0)), daemon=True).start()
    # zero_mode: the address in a request is the index in the block, as on the wire.
    slave = ModbusSlaveContext(hr=ModbusSequentialDataBlock(start, values), zero_mode=True)
    StartTcpServer(context=ModbusServerContext(slaves=slave, single=True),
                   address=("127.0.0.1", port))


if __name__ == "__main__":
    main()
