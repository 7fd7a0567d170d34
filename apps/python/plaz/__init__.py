"""A content hub for electronic-design tools.

    import plaz

    for item in plaz.items(words=["pins", "report"]):
        print(item, item.description)
    plaz.install("boards::aurora")

Stores and items are objects with their properties as attributes. As long as anybody has such an object, the same store
or item is the same object. An item's is gone once its store was refreshed, a store's once the hub's list of stores was;
its use raises StaleObjectError then.

Messages of the hub go to the logger "plaz", each record with its number as message_id. Errors of a call that raises are
in the exception instead.

Any thread may use the hub, one at a time. Other threads run while a call waits for git; one that enters the hub
meanwhile gets BusyError, as does a callback. Ctrl-C ends a call with KeyboardInterrupt, cancel() ends that of another
thread; what was done stays done. At its end Python cancels a call that lasts, and waits for its callbacks. A process
can load the package once, in one interpreter.
"""

from plaz._errors import AmbiguousError, BusyError, Cancelled, Error, NotFoundError, StaleObjectError
from plaz._plaz import (
    Item,
    Store,
    cancel,
    categories,
    history,
    hold,
    install,
    item,
    items,
    refresh,
    repair,
    set_product,
    store,
    stores,
    undo,
    unhold,
    uninstall,
    update,
    verify,
    why,
    why_not,
)
from plaz._results import (
    ActionResult,
    CatalogChange,
    CatalogChanges,
    Category,
    FilesResult,
    HistoryChange,
    HistoryEntry,
    Message,
    PlannedStep,
    StoreResult,
)
from plaz._settings import Parameters, Preferences

params = Parameters()
preferences = Preferences()

__all__ = [
    "ActionResult",
    "AmbiguousError",
    "BusyError",
    "Cancelled",
    "CatalogChange",
    "CatalogChanges",
    "Category",
    "Error",
    "FilesResult",
    "HistoryChange",
    "HistoryEntry",
    "Item",
    "Message",
    "NotFoundError",
    "Parameters",
    "PlannedStep",
    "Preferences",
    "StaleObjectError",
    "Store",
    "StoreResult",
    "cancel",
    "categories",
    "history",
    "hold",
    "install",
    "item",
    "items",
    "params",
    "preferences",
    "refresh",
    "repair",
    "set_product",
    "store",
    "stores",
    "undo",
    "unhold",
    "uninstall",
    "update",
    "verify",
    "why",
    "why_not",
]
