/** What the components show. They take it from a Source and never ask where it came from. */
export interface Source {
  readonly page: PageInfo;
  /** The parsed document; parsed at the first call. @throws Error with one line for the reader. */
  document(index: number): unknown;
}

export interface PageInfo {
  generator: string;
  made: string;
  redacted?: boolean;
  machine: {name: string; guid: string};
  documents: DocumentInfo[];
  notes?: string[];
  /** The documents with the newest complete state. */
  current: {machine: number | null; files: number | null};
  schema: Record<string, SectionSchema>;
  explanations?: Record<string, {missing?: string; needs?: string}>;
  changes?: Change[];
}

export interface DocumentInfo {
  kind: 'machine' | 'files';
  form: 'full' | 'incremental' | 'applied';
  name: string;
  /** Seconds since the epoch. */
  time: number | null;
}

export interface SectionSchema {
  description?: string;
  kind: 'list' | 'record';
  identity?: string[];
  /** By the dotted path within a record. */
  fields: Record<string, FieldSchema>;
}

export interface FieldSchema {
  description?: string;
  source?: string;
  type?: string | string[];
  unit?: string;
}

export interface Change {
  /** Seconds since the epoch. */
  time: number | null;
  day?: string;
  /** Indices of documents; the first is null if the one before is not known. */
  from: number | null;
  to: number;
  section: string;
  change: 'created' | 'removed' | 'changed';
  record: string;
  /** Of a changed record. */
  fields?: ChangedField[];
}

/** A former value that is not known is left out. */
export interface ChangedField {
  key: string;
  before?: unknown;
  after?: unknown;
}
