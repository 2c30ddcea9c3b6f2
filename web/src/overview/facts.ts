import {numberAt, objectAt, recordsOf, textAt, type JsonObject} from '../model/Json';
import {sizeText} from '../model/Values';

/** Something that a person should see, and where it is in the document. */
export interface Concern {
  text: string;
  keys: (string | number)[];
}

const fullFrom = 0.9;

/** The part of a volume that is used; 0 if its size is unknown. */
export const usedPart = (volume: JsonObject): number => {
  const size = numberAt(volume, 'sizeBytes');
  return size > 0 ? Math.min(1, Math.max(0, 1 - numberAt(volume, 'freeBytes') / size)) : 0;
};

export const volumeName = (volume: JsonObject): string =>
  textAt(volume, 'volumeName') ||
  textAt(volume, 'mountPoint') ||
  textAt(volume, 'device') ||
  'unnamed';

/** Names longer than this are cut, so that what is said of them can be seen. */
const mostOfName = 80;

export function concernsOf(document: JsonObject): Concern[] {
  return [...fullVolumes(document), ...firmware(document), ...stoppedServices(document)];
}

function* fullVolumes(document: JsonObject): Generator<Concern> {
  for (const [at, disk] of recordsOf(document.disk).entries()) {
    for (const [place, volume] of recordsOf(disk.logicalDisk).entries()) {
      const used = usedPart(volume);
      if (used <= fullFrom) continue;
      const free = sizeText(numberAt(volume, 'freeBytes'));
      yield {
        text: `Volume ${volumeName(volume).slice(0, mostOfName)} is ${Math.floor(used * 100)}% full, ${free} are free`,
        keys: ['disk', at, 'logicalDisk', place],
      };
    }
  }
}

function* firmware(document: JsonObject): Generator<Concern> {
  const bios = objectAt(document, 'bios');
  // A date that the table has in a form of its own is -1000.
  if (Object.keys(bios).length && numberAt(bios, 'date') <= 0) {
    yield {
      text: `The firmware ${textAt(bios, 'version').slice(0, mostOfName)} has no date`,
      keys: ['bios', 'date'],
    };
  }
}

function* stoppedServices(document: JsonObject): Generator<Concern> {
  for (const [at, service] of recordsOf(document.service).entries()) {
    if (textAt(service, 'startupMode') === 'Enabled' && textAt(service, 'state') === 'Stopped') {
      const name = textAt(service, 'displayName') || textAt(service, 'name');
      yield {
        text: `The service ${name.slice(0, mostOfName)} is enabled and stopped`,
        keys: ['service', at],
      };
    }
  }
}
