import type {SectionSchema} from '../data/Source';
import {isObject, type JsonObject} from '../model/Json';
import {shown, type Shown} from '../model/Values';
import {matches} from './RecordRows';
import type {Column, Rows} from './Rows';

const valueColumn = 1;

/** A single record as rows, one for each property; those of an object within it follow with dotted keys. */
export class PropertyRows implements Rows {
  readonly columns: Column[] = [
    {key: 'property', width: 240, common: true, description: 'Key in the document.'},
    {key: 'value', width: 360, common: true},
    {key: 'meaning', width: 380, common: true, description: 'What the schema says of it.'},
    {key: 'source', width: 380, common: true, description: 'Where it comes from.'},
  ];
  private readonly properties: {keys: string[]; value: unknown}[] = [];

  constructor(
    record: JsonObject,
    private readonly schema: SectionSchema | undefined,
    private readonly linkTo: (...keys: string[]) => string,
  ) {
    this.add(record, []);
  }

  get count(): number {
    return this.properties.length;
  }

  value(row: number, column: number): unknown {
    const {keys, value} = this.properties[row];
    const field = this.field(row);
    return [keys.join('.'), value, field?.description, field?.source][column];
  }

  shownAs(row: number, column: number): Shown {
    return shown(
      this.value(row, column),
      column === valueColumn ? this.field(row)?.unit : undefined,
    );
  }

  link(row: number, column: number): string | undefined {
    return column <= valueColumn ? this.linkTo(...this.properties[row].keys) : undefined;
  }

  matcher(query: string): (row: number) => boolean {
    return (row) =>
      this.columns.some((column, at) =>
        matches(
          this.value(row, at),
          query,
          at === valueColumn ? {...column, unit: this.field(row)?.unit} : column,
        ),
      );
  }

  private field(row: number) {
    const path = this.properties[row].keys.join('.');
    return this.schema && Object.hasOwn(this.schema.fields, path)
      ? this.schema.fields[path]
      : undefined;
  }

  private add(record: JsonObject, above: string[]): void {
    for (const [key, value] of Object.entries(record)) {
      const keys = [...above, key];
      if (isObject(value) && above.length < 3) this.add(value, keys);
      else this.properties.push({keys, value});
    }
  }
}
