"""What the hub's functions raise."""


class Error(Exception):
    """The hub could not do what it was asked for.

    message_id: number of the message that tells why, such as "17-2183".
    text: its sentence, without the number.
    messages: all messages of the failed call, in order. Errors among them were not logged.
    results: what became of each item or store that the call had come to.
    """

    def __init__(self, text, message_id="", messages=(), results=()):
        super().__init__(text, message_id, messages, results)
        self.text = text
        self.message_id = message_id
        self.messages = messages
        self.results = results

    def __str__(self):
        return f"[{self.message_id}] {self.text}" if self.message_id else self.text


class NotFoundError(Error, KeyError):
    """There is no such store, item or parameter."""


class AmbiguousError(Error):
    """A reference means several items; the text names them."""


class StaleObjectError(Error, ReferenceError):
    """The store or item that the object stood for is gone. Get it again."""


class Cancelled(Error):
    """A progress callback has returned False. What was done before stays done."""


class BusyError(Error, RuntimeError):
    """The hub is in use: by another thread, by the call that a callback came from, or by another program."""
