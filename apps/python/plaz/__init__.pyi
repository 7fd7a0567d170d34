from collections.abc import Callable, Iterable, Iterator, Mapping, MutableMapping, Sequence
from typing import Any, Literal, NamedTuple, NoReturn, final

_Progress = Callable[[str, float], object]

class Message(NamedTuple):
    id: str
    label: str
    text: str
    arguments: tuple[str, ...]

class ActionResult(NamedTuple):
    store: str
    name: str
    revision: str
    previous_revision: str
    directory: str
    outcome: str
    needed_by: str = ...

class HistoryChange(NamedTuple):
    store: str
    name: str
    revision: str
    change: str
    commit_before: str
    mode_before: str
    commit_after: str
    mode_after: str

class HistoryEntry(NamedTuple):
    number: int
    time: str
    command: str
    undone: int
    is_part: bool
    changes: tuple[HistoryChange, ...]
    is_undone: bool = False

class PlannedStep(NamedTuple):
    step: str
    store: str
    name: str
    revision: str
    commit_id: str
    previous_revision: str
    previous_commit_id: str
    asked_for: bool
    needed_by: str
    local_directory: str
    url: str
    size: int | None
    changes: str

class Category(NamedTuple):
    store: str
    name: str
    display_name: str
    description: str
    parent: str
    item_count: int

class FilesResult(NamedTuple):
    store: str
    name: str
    revision: str
    outcome: str
    directory: str
    changed: tuple[str, ...]
    missing: tuple[str, ...]
    additional: tuple[str, ...]
    unreadable: tuple[str, ...]

class CatalogChange(NamedTuple):
    change: str
    name: str
    revision: str
    previous_revision: str
    is_installed: bool

class CatalogChanges(NamedTuple):
    url: str
    previous_commit_id: str
    commit_id: str
    subjects: tuple[str, ...]
    items: tuple[CatalogChange, ...]

class StoreResult(NamedTuple):
    store: str
    outcome: str
    directory: str
    items: int
    changes: CatalogChanges | None = None

class Error(Exception):
    text: str
    message_id: str
    messages: tuple[Message, ...]
    results: tuple[ActionResult | FilesResult | StoreResult, ...]
    def __init__(
        self,
        text: str,
        message_id: str = "",
        messages: tuple[Message, ...] = (),
        results: tuple[ActionResult | FilesResult | StoreResult, ...] = (),
    ) -> None: ...

class NotFoundError(Error, KeyError): ...
class AmbiguousError(Error): ...
class StaleObjectError(Error, ReferenceError): ...
class Cancelled(Error): ...
class BusyError(Error, RuntimeError): ...

@final
class Store:
    def __init__(self, only_the_hub_makes_it: NoReturn) -> None: ...
    @property
    def name(self) -> str: ...
    @property
    def display_name(self) -> str: ...
    @property
    def description(self) -> str: ...
    @property
    def store_type(self) -> str: ...
    @property
    def url(self) -> str: ...
    @property
    def branch(self) -> str: ...
    @property
    def release(self) -> str: ...
    @property
    def catalog_revision(self) -> str: ...
    @property
    def local_directory(self) -> str: ...
    @property
    def is_private(self) -> bool: ...
    @property
    def user_repository(self) -> bool: ...
    @property
    def is_product_specific(self) -> bool: ...
    @property
    def multi_revision_supported(self) -> bool: ...
    @property
    def last_refresh(self) -> int: ...
    @property
    def item_count(self) -> int: ...
    @property
    def installed_count(self) -> int: ...
    def items(
        self,
        pattern: str | None = None,
        *,
        category: str | None = None,
        words: Sequence[str] = (),
        installed: bool = False,
        outdated: bool = False,
        all_revisions: bool = False,
        filter: str | None = None,
        sort: Literal["relevance", "name", "store", "revision"] | None = None,
        limit: int | None = None,
    ) -> list[Item]: ...
    def refresh(self, progress: _Progress | None = None) -> StoreResult: ...
    def check(self) -> StoreResult: ...
    def __iter__(self) -> Iterator[Item]: ...
    def __len__(self) -> int: ...
    def __bool__(self) -> bool: ...

@final
class Item:
    def __init__(self, only_the_hub_makes_it: NoReturn) -> None: ...
    @property
    def name(self) -> str: ...
    @property
    def item_name(self) -> str: ...
    @property
    def store(self) -> str: ...
    @property
    def revision(self) -> str: ...
    @property
    def latest_revision(self) -> str: ...
    @property
    def display_name(self) -> str: ...
    @property
    def description(self) -> str: ...
    @property
    def company(self) -> str: ...
    @property
    def company_display(self) -> str: ...
    @property
    def author(self) -> str: ...
    @property
    def website(self) -> str: ...
    @property
    def url(self) -> str: ...
    @property
    def logo(self) -> str: ...
    @property
    def history(self) -> str: ...
    @property
    def category(self) -> str: ...
    @property
    def categories(self) -> list[str]: ...
    @property
    def search_keywords(self) -> list[str]: ...
    @property
    def dependencies(self) -> list[str]: ...
    @property
    def commit_id(self) -> str: ...
    @property
    def is_active(self) -> bool: ...
    @property
    def installed(self) -> bool: ...
    @property
    def outdated(self) -> bool: ...
    @property
    def held(self) -> bool: ...
    @property
    def installation_mode(self) -> str: ...
    @property
    def reference_count(self) -> int: ...
    @property
    def local_directory(self) -> str: ...
    def install(
        self,
        *,
        quiet: bool = False,
        reinstall: bool = False,
        discard_changes: bool = False,
        progress: _Progress | None = None,
    ) -> ActionResult: ...
    def uninstall(
        self, *, quiet: bool = False, discard_changes: bool = False, progress: _Progress | None = None
    ) -> ActionResult: ...
    def update(
        self, *, quiet: bool = False, discard_changes: bool = False, progress: _Progress | None = None
    ) -> ActionResult: ...
    def repair(
        self, *, quiet: bool = False, discard_changes: bool = False, progress: _Progress | None = None
    ) -> ActionResult: ...
    def hold(self) -> ActionResult: ...
    def unhold(self) -> ActionResult: ...
    def verify(self, *, progress: _Progress | None = None) -> FilesResult: ...
    def needed_items(self) -> list[Item]: ...

class Parameters(Mapping[str, str | int | bool]):
    def __getitem__(self, name: str) -> str | int | bool: ...
    def __setitem__(self, name: str, value: str | int | bool) -> None: ...
    def __delitem__(self, name: str) -> None: ...
    def __iter__(self) -> Iterator[str]: ...
    def __len__(self) -> int: ...

class Preferences(MutableMapping[str, list[str]]):
    def __getitem__(self, name: str) -> list[str]: ...
    def __setitem__(self, name: str, values: Sequence[str]) -> None: ...
    def __delitem__(self, name: str) -> None: ...
    def __iter__(self) -> Iterator[str]: ...
    def __len__(self) -> int: ...

params: Parameters
preferences: Preferences

def stores(pattern: str | None = None) -> list[Store]: ...
def store(name: str) -> Store: ...
def items(
    pattern: str | None = None,
    *,
    store: str | None = None,
    category: str | None = None,
    words: Sequence[str] = (),
    installed: bool = False,
    outdated: bool = False,
    all_revisions: bool = False,
    filter: str | None = None,
    sort: Literal["relevance", "name", "store", "revision"] | None = None,
    limit: int | None = None,
) -> list[Item]: ...
def item(reference: str, store: str | None = None) -> Item: ...
def install(
    items: Item | str | Iterable[Item | str],
    *,
    store: str | None = None,
    quiet: bool = False,
    reinstall: bool = False,
    discard_changes: bool = False,
    progress: _Progress | None = None,
    dry_run: bool = False,
) -> list[Any]: ...  # ActionResult, or PlannedStep with dry_run
def uninstall(
    items: Item | str | Iterable[Item | str],
    *,
    store: str | None = None,
    quiet: bool = False,
    discard_changes: bool = False,
    progress: _Progress | None = None,
    dry_run: bool = False,
) -> list[Any]: ...  # ActionResult, or PlannedStep with dry_run
def update(
    items: Item | str | Iterable[Item | str],
    *,
    store: str | None = None,
    quiet: bool = False,
    discard_changes: bool = False,
    progress: _Progress | None = None,
    dry_run: bool = False,
) -> list[Any]: ...  # ActionResult, or PlannedStep with dry_run
def hold(items: Item | str | Iterable[Item | str], *, store: str | None = None) -> list[ActionResult]: ...
def unhold(items: Item | str | Iterable[Item | str], *, store: str | None = None) -> list[ActionResult]: ...
def history() -> list[HistoryEntry]: ...
def undo(
    number: int | None = None,
    *,
    quiet: bool = False,
    discard_changes: bool = False,
    progress: _Progress | None = None,
    dry_run: bool = False,
) -> list[Any]: ...  # ActionResult, or PlannedStep with dry_run
def why(items: Item | str | Iterable[Item | str], *, store: str | None = None) -> list[str]: ...
def why_not(item: Item | str, *, store: str | None = None) -> str | None: ...
def categories(store: str | None = None) -> list[Category]: ...
def verify(
    items: Item | str | Iterable[Item | str] | None = None,
    *,
    store: str | None = None,
    progress: _Progress | None = None,
) -> list[FilesResult]: ...
def repair(
    items: Item | str | Iterable[Item | str] | None = None,
    *,
    store: str | None = None,
    quiet: bool = False,
    discard_changes: bool = False,
    progress: _Progress | None = None,
) -> list[ActionResult]: ...
def refresh(
    stores: Store | str | Iterable[Store | str] | None = None,
    *,
    hub: bool = False,
    progress: _Progress | None = None,
    dry_run: bool = False,
) -> list[StoreResult]: ...
def cancel() -> bool: ...
def set_product(name: str, version: str) -> None: ...

__all__ = [
    "ActionResult",
    "AmbiguousError",
    "BusyError",
    "Cancelled",
    "CatalogChange",
    "CatalogChanges",
    "Error",
    "FilesResult",
    "HistoryChange",
    "HistoryEntry",
    "Item",
    "Message",
    "NotFoundError",
    "Parameters",
    "Preferences",
    "StaleObjectError",
    "Store",
    "StoreResult",
    "cancel",
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
]
