import type {Change, ChangedField, PageInfo} from '../data/Source';
import {rawLink, type JsonObject} from '../model/Json';
import {shown} from '../model/Values';
import {matches} from './RecordRows';
import type {Column, Rows} from './Rows';

const column = (key: string, width: number, description: string, unit?: string): Column => ({
  key,
  width,
  description,
  unit,
  common: true,
});

const beforeColumn = 5;
const afterColumn = 6;
const parts = {created: 'create', removed: 'delete', changed: 'update'};

/** A row for each thing that came or went, and for each property that changed. */
export class ChangeRows implements Rows {
  readonly columns: Column[] = [
    column('time', 180, 'Time of the document that has the change.', 'ms since the epoch'),
    column('section', 140, 'Section of the document.'),
    column('change', 95, 'Whether the record came, went or changed.'),
    column('record', 210, 'What identifies the record.'),
    column('key', 210, 'The property that changed; within a list with the number of the record.'),
    column('before', 195, 'Its value in the document before.'),
    column('after', 195, 'Its value in this document.'),
  ];
  /** Pairs of a change and of a property of it, -1 for the whole record. */
  private readonly places: Int32Array;

  private readonly changes: readonly Change[];

  constructor(
    changes: readonly Change[],
    private readonly page: PageInfo,
  ) {
    const places: number[] = [];
    this.changes = changes.map(inParts);
    this.changes.forEach(({fields}, at) => {
      if (!fields?.length) places.push(at, -1);
      fields?.forEach((_, field) => places.push(at, field));
    });
    this.places = Int32Array.from(places);
  }

  get count(): number {
    return this.places.length / 2;
  }

  change(row: number): Change {
    return this.changes[this.places[row * 2]];
  }

  value(row: number, column: number): unknown {
    const change = this.change(row);
    const field = change.fields?.[this.places[row * 2 + 1]];
    switch (column) {
      case 0:
        return change.time === null ? null : change.time * 1000;
      case 1:
        return change.section;
      case 2:
        return change.change;
      case 3:
        return change.record;
      case 4:
        return field?.key ?? '';
      case beforeColumn:
        return !field ? '' : 'before' in field ? field.before : '?';
      default:
        return field ? field.after : '';
    }
  }

  /** The unit of a changed value is that of its property. */
  unit(row: number): string | undefined {
    const {section, fields} = this.change(row);
    const key = fields?.[this.places[row * 2 + 1]]?.key;
    if (key === undefined) return undefined;
    const known = this.page.schema[section]?.fields;
    return (known?.[key.replace(/\.\d+(?=\.)/g, '')] ?? known?.[`files.${key}`])?.unit;
  }

  shownAs(row: number, column: number): ReturnType<typeof shown> {
    if (column < beforeColumn) return shown(this.value(row, column), this.columns[column].unit);
    const unit = this.unit(row);
    const [before, after] = [beforeColumn, afterColumn].map((at) =>
      shown(this.value(row, at), unit),
    );
    const own = column === beforeColumn ? before : after;
    // Rounded, two sizes may be the same.
    return before.text === after.text && own.exact ? {text: own.exact} : own;
  }

  /** Address of the section in the document: a change does not say which record of it. */
  link(row: number): string {
    const {to, section, change} = this.change(row);
    const {kind, form} = this.page.documents[to];
    const hasParts = kind === 'machine' && form === 'incremental';
    return rawLink(to, ...(hasParts ? [parts[change]] : []), section);
  }

  matcher(query: string): (row: number) => boolean {
    return (row) =>
      this.columns.some((of, column) =>
        matches(
          this.value(row, column),
          query,
          column >= beforeColumn ? {...of, unit: this.unit(row)} : of,
        ),
      );
  }
}

const isContainer = (value: unknown): value is JsonObject =>
  typeof value === 'object' && value !== null;

/** Of lists and records only what differs in them: the beginnings of long ones look the same. */
const inParts = (change: Change): Change =>
  change.fields?.some(({before, after}) => isContainer(before) && isContainer(after))
    ? {...change, fields: change.fields.flatMap(differences)}
    : change;

function differences(field: ChangedField): ChangedField[] {
  const {key, before, after} = field;
  if (!isContainer(before) || !isContainer(after)) return [field];
  return [...new Set([...Object.keys(before), ...Object.keys(after)])]
    .filter((each) => JSON.stringify(before[each]) !== JSON.stringify(after[each]))
    .flatMap((each) =>
      differences({key: `${key}.${each}`, before: before[each], after: after[each]}),
    );
}
