import type {ComponentChildren} from 'preact';
import type {PageInfo, Source} from '../data/Source';
import {
  isObject,
  numberAt,
  objectAt,
  rawLink,
  recordsOf,
  textAt,
  type JsonObject,
} from '../model/Json';
import {countText, dateText, grouped, memoryText, shortText, sizeText} from '../model/Values';
import {concernsOf, usedPart, volumeName} from './facts';
import {scaleLinear} from 'd3-scale';

/** Longer lists are in the sections. */
const most = {concerns: 40, records: 16, volumes: 12, addresses: 8, documents: 40};

/** The machine at a glance: what is in it and what needs attention. */
export function Overview({source, index}: {source: Source; index: number | null}) {
  const document = index === null ? undefined : source.document(index);
  if (index === null || !isObject(document)) {
    return <Documents page={source.page} />;
  }
  return (
    <>
      <Concerns document={document} index={index} />
      <div class="cards">
        <Machine document={document} />
        <Memory document={document} />
        <Processors document={document} />
        <Disks document={document} />
        <Displays document={document} />
        <Adapters document={document} />
        <Documents page={source.page} />
      </div>
    </>
  );
}

function Card({
  title,
  section,
  wide,
  empty,
  children,
}: {
  title: string;
  section?: string;
  wide?: boolean;
  /** Whether the document has none of it. */
  empty?: boolean;
  children: ComponentChildren;
}) {
  return (
    <section class={wide ? 'card wide' : 'card'} aria-label={title}>
      <h2>{section ? <a href={`#sections/${section}`}>{title}</a> : title}</h2>
      {empty ? (
        <p class="empty">
          None is listed; <a href={`#sections/${section}`}>the section says why</a>.
        </p>
      ) : (
        children
      )}
    </section>
  );
}

/** Pairs of a term and what is known of it; those without are left out. */
function Facts({facts}: {facts: [string, ComponentChildren][]}) {
  const known = facts.filter(([, value]) => value !== '' && value !== undefined);
  return (
    <dl>
      {known.map(([term, value]) => (
        <>
          <dt>{term}</dt>
          <dd>{typeof value === 'string' ? shortText(value.replace(/\s*\n\s*/g, ', ')) : value}</dd>
        </>
      ))}
    </dl>
  );
}

/** A date in the reader's zone, that of UTC as its title. */
export function Time({at}: {at: number}) {
  const {text, exact} = dateText(at);
  return <time title={exact}>{text}</time>;
}

function More({list, shown, section}: {list: unknown[]; shown: number; section: string}) {
  return list.length > shown ? (
    <p>
      <a href={`#sections/${section}`}>{`${grouped(list.length - shown)} more`}</a>
    </p>
  ) : null;
}

function Concerns({document, index}: {document: JsonObject; index: number}) {
  const concerns = concernsOf(document);
  return (
    <section class="concerns" aria-label="Needs attention">
      <h2>Needs attention</h2>
      {concerns.length === 0 && <p>Nothing was found.</p>}
      <ul>
        {concerns.slice(0, most.concerns).map(({text, keys}) => (
          <li>
            <a href={rawLink(index, ...keys)}>{shortText(text)}</a>
          </li>
        ))}
      </ul>
      {concerns.length > most.concerns && (
        <p>{countText(concerns.length - most.concerns, 'more', 'more')} in the sections.</p>
      )}
    </section>
  );
}

function Machine({document}: {document: JsonObject}) {
  const [device, os, setup] = ['device', 'os', 'setup'].map((key) => objectAt(document, key));
  const system = objectAt(setup, 'system');
  const taken = numberAt(device, 'assetDate');
  const installed = numberAt(os, 'installDate');
  return (
    <Card title="Machine" section="setup">
      <Facts
        facts={[
          ['Name', textAt(device, 'name')],
          [
            'Model',
            [textAt(system, 'manufacturer'), textAt(system, 'family'), textAt(system, 'product')]
              .filter(Boolean)
              .join(' '),
          ],
          [
            'System',
            [
              textAt(os, 'name'),
              textAt(os, 'version'),
              textAt(os, 'build') && `(${textAt(os, 'build')})`,
            ]
              .filter(Boolean)
              .join(' '),
          ],
          ['Serial number', textAt(system, 'serial') || textAt(os, 'serialNumber')],
          ['Logged on', textAt(device, 'userName')],
          ['Domain', textAt(device, 'domain')],
          ['Firmware', textAt(objectAt(document, 'bios'), 'version')],
          ['Installed', installed ? <Time at={installed} /> : ''],
          ['Inventory of', taken ? <Time at={taken} /> : ''],
        ]}
      />
    </Card>
  );
}

function Memory({document}: {document: JsonObject}) {
  const memory = objectAt(document, 'memory');
  const slots = recordsOf(document.memorySlot);
  const total = numberAt(memory, 'totalBytes');
  return (
    <Card
      title="Memory"
      section={slots.length || !total ? 'memorySlot' : 'memory'}
      empty={slots.length === 0 && total === 0}
    >
      <Facts facts={[['In all', total ? memoryText(total) : '']]} />
      <ul class="slots">
        {slots.slice(0, most.records).map((slot) => {
          const size = numberAt(slot, 'sizeBytes');
          const speed = numberAt(slot, 'speedMhz');
          return (
            <li class={size ? 'slot' : 'slot vacant'}>
              <b>{shortText(textAt(slot, 'name') || textAt(slot, 'bank'))}</b>
              <span>
                {size
                  ? `${memoryText(size)} ${shortText(textAt(slot, 'type'))}${speed ? `, ${speed} MHz` : ''}`
                  : 'empty'}
              </span>
            </li>
          );
        })}
      </ul>
      <More list={slots} shown={most.records} section="memorySlot" />
    </Card>
  );
}

function Processors({document}: {document: JsonObject}) {
  const processors = recordsOf(document.processorSlot);
  return (
    <Card title="Processors" section="processorSlot" empty={processors.length === 0}>
      {processors.slice(0, most.records).map((processor) => {
        const [cores, threads, speed] = ['cores', 'threads', 'maximumMhz'].map((key) =>
          numberAt(processor, key),
        );
        return (
          <p>
            {[
              shortText(textAt(processor, 'model')),
              cores ? countText(cores, 'core') : '',
              threads ? countText(threads, 'thread') : '',
              speed ? `${speed} MHz` : '',
            ]
              .filter(Boolean)
              .join(', ')}
          </p>
        );
      })}
      <More list={processors} shown={most.records} section="processorSlot" />
    </Card>
  );
}

function Disks({document}: {document: JsonObject}) {
  const disks = recordsOf(document.disk);
  const percent = scaleLinear([0, 1], [0, 100]);
  return (
    <Card title="Disks" section="disk" wide empty={disks.length === 0}>
      {disks.slice(0, most.records).map((disk) => {
        const volumes = recordsOf(disk.logicalDisk);
        return (
          <div class="disk">
            <h3>
              {shortText(textAt(disk, 'model') || textAt(disk, 'pnpDeviceId'))}
              {`, ${sizeText(numberAt(disk, 'sizeBytes'))} ${shortText(textAt(disk, 'mediaType'))}`}
            </h3>
            {volumes.slice(0, most.volumes).map((volume) => {
              const used = usedPart(volume);
              return (
                <div class="volume">
                  <span class="name">{shortText(volumeName(volume))}</span>
                  <span class="meter" aria-hidden="true">
                    <span
                      class={used > 0.9 ? 'used full' : 'used'}
                      style={{width: `${percent(used)}%`}}
                    />
                  </span>
                  <span>{`${sizeText(numberAt(volume, 'freeBytes'))} of ${sizeText(numberAt(volume, 'sizeBytes'))} free`}</span>
                </div>
              );
            })}
            <More list={volumes} shown={most.volumes} section="disk" />
          </div>
        );
      })}
      <More list={disks} shown={most.records} section="disk" />
    </Card>
  );
}

/** Documents have no sizes of displays, so that all have one. */
function Displays({document}: {document: JsonObject}) {
  const displays = recordsOf(document.displays);
  return (
    <Card title="Displays" section="displays" empty={displays.length === 0}>
      <ul class="displays">
        {displays.slice(0, most.records).map((display) => (
          <li>
            <span class="screen">
              {shortText(textAt(display, 'name') || textAt(display, 'model'))}
            </span>
            <span>
              {shortText(
                [textAt(display, 'manufacturer'), textAt(display, 'serial')]
                  .filter(Boolean)
                  .join(', '),
              )}
            </span>
          </li>
        ))}
      </ul>
      <More list={displays} shown={most.records} section="displays" />
    </Card>
  );
}

function Adapters({document}: {document: JsonObject}) {
  const adapters = recordsOf(document.networkAdapter);
  return (
    <Card title="Network" section="networkAdapter" wide empty={adapters.length === 0}>
      <dl>
        {adapters.slice(0, most.records).map((adapter) => {
          const addresses = recordsOf(adapter.addresses)
            .slice(0, most.addresses)
            .map((each) => shortText(textAt(each, 'address')));
          return (
            <>
              <dt>
                {shortText(textAt(adapter, 'name'))}{' '}
                <small>{shortText(textAt(adapter, 'type'))}</small>
              </dt>
              <dd>{addresses.join(', ') || 'no address'}</dd>
            </>
          );
        })}
      </dl>
      <More list={adapters} shown={most.records} section="networkAdapter" />
    </Card>
  );
}

function Documents({page}: {page: PageInfo}) {
  return (
    <Card title="Documents" wide>
      <ul>
        {page.documents.slice(0, most.documents).map(({name, kind, form, time}, index) => (
          <li>
            <a href={kind === 'files' ? `#files/${index}` : `#raw/${index}`}>{shortText(name)}</a>
            {` ${kind === 'files' ? 'file inventory' : 'inventory'}, ${form} `}
            {time !== null && <Time at={time * 1000} />}
          </li>
        ))}
      </ul>
      {page.documents.length > most.documents && (
        <p>{page.documents.length - most.documents} more</p>
      )}
    </Card>
  );
}
