#!/usr/bin/python3
"""An independent Modbus TCP server for the client's tests: holding registers from START
hold the given 16-bit values, served on 127.0.0.1:PORT until the process is killed.

Usage: pymodbus_server.py PORT START VALUE...
"""

import sys

from pymodbus.datastore import (ModbusSequentialDataBlock, ModbusServerContext,
                                ModbusSlaveContext)
from pymodbus.server import StartTcpServer


def main():
    port, start = int(sys.argv[1]), int(sys.argv[2])
    values = [int(v) for v in sys.argv[3:]]
    block = ModbusSequentialDataBlock(start, values)
    # zero_mode: the address in a request is the index in the block, as on the wire.
    slave = ModbusSlaveContext(hr=block, zero_mode=True)
    StartTcpServer(context=ModbusServerContext(slaves=slave, single=True),
                   address=("127.0.0.1", port))


if __name__ == "__main__":
    main()
