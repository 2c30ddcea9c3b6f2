import {useMemo} from 'preact/hooks';
import type {SectionSchema, Source} from '../data/Source';
import {encodeText, isObject, rawLink, recordsOf, wellFormed, type JsonObject} from '../model/Json';
import {shortText, shown} from '../model/Values';
import {fieldsBelow} from '../table/columns';
import {DataTable} from '../table/DataTable';
import {placedRecords, RecordRows, type Placed} from '../table/RecordRows';
import {PropertyRows} from '../table/PropertyRows';
import type {Rows} from '../table/Rows';

/** One section of the newest machine inventory, with the list of all sections beside it. */
export function SectionsView({
  source,
  index,
  section,
}: {
  source: Source;
  index: number;
  section: string;
}) {
  const {schema, explanations} = source.page;
  const document = source.document(index);
  const known = isObject(document) ? document : {};
  const keys = [
    ...new Set([...Object.keys(schema).filter((key) => key !== 'paths'), ...Object.keys(known)]),
  ];
  const key = keys.find((each) => wellFormed(each) === section) ?? keys[0];
  const value = Object.hasOwn(known, key) ? known[key] : undefined;
  const own = Object.hasOwn(schema, key) ? schema[key] : undefined;
  const tables = useMemo(() => tablesOf(key, value, own, index), [key, value, own, index]);
  return (
    <div class="sections">
      <nav aria-label="Sections" class="section-list">
        {keys.slice(0, 80).map((each) => (
          <a
            href={`#sections/${encodeText(each)}`}
            aria-current={each === key ? 'page' : undefined}
          >
            {shortText(each)} <span class="amount">{amountOf(known[each])}</span>
          </a>
        ))}
      </nav>
      <div class="section">
        <h2>{shortText(key)}</h2>
        {own?.description && <p>{own.description}</p>}
        {tables.length === 0 && <Empty known={explanations?.[key]} />}
        {tables.map(({label, rows}, at) => (
          <>
            {at > 0 && <h3>{shortText(label)}</h3>}
            <DataTable
              key={`${index} ${key} ${at}`}
              name={`${index} ${key} ${at}`}
              label={label}
              rows={rows}
              elements={at ? 120 : tables.length > 1 ? 700 : 950}
            />
          </>
        ))}
      </div>
    </div>
  );
}

const amountOf = (value: unknown): string =>
  Array.isArray(value)
    ? String(value.length)
    : value === null || value === undefined
      ? '\u2013'
      : '';

function Empty({known}: {known?: {missing?: string; needs?: string}}) {
  return (
    <p class="empty">
      This section is empty{known?.missing ? ': ' : '.'}
      {known?.missing && <Coded text={known.missing} />}
      {known?.needs && <> It needs {known.needs}.</>}
    </p>
  );
}

/** A text with code between backticks. */
export const Coded = ({text}: {text: string}) => (
  <>{text.split('`').map((part, at) => (at % 2 ? <code>{part}</code> : part))}</>
);

interface Named {
  label: string;
  rows: Rows;
}

const mostNested = 3;

/** The table of a section, and one for each list within its records. */
function tablesOf(
  key: string,
  value: unknown,
  schema: SectionSchema | undefined,
  index: number,
): Named[] {
  const link: Placed['link'] = (...keys) => rawLink(index, key, ...keys);
  if (isObject(value)) {
    return [
      {label: key, rows: new PropertyRows(value, schema, link)},
      ...nestedTables(key, [{record: value, link}], schema),
    ];
  }
  const records = placedRecords(value, link);
  if (records.length === 0) return [];
  const rows = new RecordRows(records, fieldsBelow(schema, ''), schema?.identity);
  return [{label: key, rows}, ...nestedTables(key, records, schema)];
}

function nestedTables(
  section: string,
  records: Placed[],
  schema: SectionSchema | undefined,
): Named[] {
  const lists = new Set(
    records.flatMap(({record}) =>
      Object.keys(record).filter((key) => recordsOf(record[key]).length > 0),
    ),
  );
  return [...lists].slice(0, mostNested).map((key) => {
    const nested = records.flatMap(({record, link}) =>
      placedRecords(record[key], (...keys) => link(key, ...keys)).map((placed) => ({
        ...placed,
        parent: identityOf(record, schema),
      })),
    );
    return {
      label: `${section}.${key}`,
      rows: new RecordRows(nested, fieldsBelow(schema, `${key}.`), [], section),
    };
  });
}

const identityOf = (record: JsonObject, schema?: SectionSchema): string =>
  (schema?.identity ?? []).map((key) => shown(record[key]).text).join(' ');
