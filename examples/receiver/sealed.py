"""Opens the sealed files of the outbox: docs/outbox-format.md."""

import hashlib
import pathlib
import tempfile
import zipfile

from nacl import bindings as sodium
from nacl.exceptions import CryptoError

IDENTIFIER_SIZE = {b"NRVKSEAL\x01": 0, b"NRVKSEAL\x02": 16}  # by magic and version
CHUNK = 65536 + sodium.crypto_secretstream_xchacha20poly1305_ABYTES
LARGEST_DOCUMENT = 1 << 30


class NotUsable(Exception):
    """A file or a document that no later attempt can use."""


def private_keys(folder):
    """Pairs by identifier of every file *.key: former keys too, which a rotation leaves there."""
    privates = [bytes.fromhex(file.read_text("ascii")) for file in pathlib.Path(folder).glob("*.key")]
    pairs = [(sodium.crypto_scalarmult_base(private), private) for private in privates]
    return {hashlib.blake2b(public, digest_size=16).digest(): (public, private) for public, private in pairs}


def open_box(box, identifier, keys):
    for public, private in [keys[identifier]] if identifier in keys else [] if identifier else keys.values():
        try:
            return sodium.crypto_box_seal_open(box, public, private)
        except (CryptoError, TypeError):
            continue
    raise NotUsable(f"no key opens it{'; it needs ' + identifier.hex() if identifier else ''}")


def unseal(sealed, keys, plain):
    """Copies from stream to stream. After an exception nothing of what was copied may be used."""
    mark = sealed.read(9)
    if mark not in IDENTIFIER_SIZE:
        raise NotUsable("no sealed file of a known version")
    identifier, box = sealed.read(IDENTIFIER_SIZE[mark]), sealed.read(80)
    header, chunk = sealed.read(24), sealed.read(CHUNK)
    if not chunk:
        raise NotUsable("truncated")
    state = sodium.crypto_secretstream_xchacha20poly1305_state()
    sodium.crypto_secretstream_xchacha20poly1305_init_pull(state, header, open_box(box, identifier, keys))
    while chunk:
        following = sealed.read(CHUNK)
        try:
            piece, tag = sodium.crypto_secretstream_xchacha20poly1305_pull(state, chunk, mark + identifier)
        except (CryptoError, RuntimeError, ValueError, TypeError) as error:
            raise NotUsable("truncated or altered") from error
        if tag != (0 if following else sodium.crypto_secretstream_xchacha20poly1305_TAG_FINAL):
            raise NotUsable("truncated or altered")
        plain.write(piece)
        chunk = following


def document_in(path, keys):
    """The text of a document, as bytes. The name of its entry is not used: it must never become a path."""
    with tempfile.TemporaryFile() as archive, open(path, "rb") as sealed:
        unseal(sealed, keys, archive)
        try:
            entries = zipfile.ZipFile(archive)
            with entries.open(*entries.infolist()) as entry:
                text = entry.read(LARGEST_DOCUMENT + 1)
        except (zipfile.BadZipFile, zipfile.zlib.error, NotImplementedError, RuntimeError, TypeError, EOFError) as error:
            raise NotUsable(f"no archive of one document: {error}") from error
    if len(text) > LARGEST_DOCUMENT:
        raise NotUsable("a document of more than 1 GiB")
    return text
