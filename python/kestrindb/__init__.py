"""Parameter files of a test-bench analysis suite, as tables and answers.

    >>> import kestrindb
    >>> db = kestrindb.load("samples/gearbox.par")
    >>> db.channel_name(3)
    'Sync input'

`load` reads a file into a `Database`. Its queries have the names of the library's, in lower case
with underscores; what an id stands for is its own sentence in `help(kestrindb.Database)`. `tables`
holds the rows of all tables, `check` tells what is wrong in a file, `order` reads an order
definition.
"""

from ._core import Refused, __version__
from ._database import Database, check, load, order, set_language
from ._records import (
    Axis,
    Change,
    Finding,
    Interval,
    LogLine,
    Order,
    OrderError,
    OrderSource,
    PassedOver,
    Polygon,
    Position,
    Rotor,
    Trigger,
)
from ._tables import Column, Table, Tables

__all__ = [
    "Axis", "Change", "Column", "Database", "Finding", "Interval", "LogLine", "Order",
    "OrderError", "OrderSource", "PassedOver", "Polygon", "Position", "Refused", "Rotor", "Table",
    "Tables", "Trigger", "__version__", "check", "load", "order", "set_language",
]
